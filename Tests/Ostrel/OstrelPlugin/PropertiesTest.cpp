#include "Support/ExpectedProperty.h"
#include "Support/GroupingLocale.h"
#include "Support/PluginUnderTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using PI::CBoundedValue;
using PI::CProperty;
using TestSupport::CExpectedProperty;

constexpr std::uint32_t ALL_ONES = 0xFFFFFFFF;

/** The whole list, written out by hand: id, caption, three attributes, kind, units, a fourth, settable,
 * value.
 */
const std::vector<CExpectedProperty> EXPECTED = {
    {{30137, 1, 1, 1, 0, 2, 1, 1}, std::string("Plugin:ID=313")},
    {{30007, 23334, 1, 1, ALL_ONES, 2, 1, 1}, std::string("NVMe-Plugin")},
    {{30099, 23339, 1, 1, ALL_ONES, 2, 1, 1}, std::string("7.16.3")},
    {{30003, 23338, 1, 1, ALL_ONES, 2, 1, 1}, std::string("Ostrel")},
    {{30005, 23335, 1, 1, ALL_ONES, 7, 21007, 1}, CBoundedValue{30, 2, 255, 1}, 0, 0, true},
};

std::vector<CProperty> read(TestSupport::CPluginUnderTest& api, std::uint32_t propertyId)
{
    std::vector<CProperty> properties(7); // the list's old content must go
    EXPECT_EQ(api.GetPluginProperties(api.m_Plugin, properties, propertyId), 0U);
    return properties;
}

TEST(PluginProperties, AreTheFiveRowsInOrder)
{
    TestSupport::CPluginUnderTest api;
    TestSupport::expectProperties(read(api, PI::ALL_PROPERTIES), EXPECTED);
}

TEST(PluginProperties, CanBeReadOneByOne)
{
    TestSupport::CPluginUnderTest api;
    for (const CExpectedProperty& expected : EXPECTED)
        TestSupport::expectProperties(read(api, expected.m_Description.propertyId), {expected});
}

TEST(PluginProperties, AnUnknownOneGivesAnEmptyListAndNoFailure)
{
    TestSupport::CPluginUnderTest api;
    EXPECT_TRUE(read(api, 30022).empty());
    EXPECT_TRUE(read(api, 0).empty());
}

TEST(PluginProperties, AreTheSameWhateverTheProcessesLocale)
{
    const TestSupport::CGroupingLocale locale("\1");
    TestSupport::CPluginUnderTest api;
    TestSupport::expectProperties(read(api, PI::ALL_PROPERTIES), EXPECTED);
}

TEST(PluginProperties, ShowTheIntervalInForce)
{
    TestSupport::CPluginUnderTest api;
    api.m_PollInterval = 60;
    const std::vector<CProperty> properties = read(api, 30005);
    ASSERT_EQ(properties.size(), 1U);
    EXPECT_TRUE(properties[0].GetValue() == CProperty::Value(CBoundedValue{60, 2, 255, 1}));
}

} // namespace
