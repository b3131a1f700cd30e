#include "Support/ExpectedProperty.h"
#include "Support/GroupingLocale.h"
#include "Support/PluginUnderTest.h"

#include <PI/CaptionId.h>

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
    {{PI::PROP_LOCATION, PI::CAPTION_NONE, 1, 1, 0, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     std::string("Plugin:ID=313")},
    {{PI::PROP_NAME, PI::PLUGIN_CAPTION_NAME, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     std::string("NVMe-Plugin")},
    {{PI::PROP_VERSION, PI::PLUGIN_CAPTION_VERSION, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     std::string("7.16.3")},
    {{PI::PROP_VENDOR, PI::PLUGIN_CAPTION_VENDOR, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     std::string("Ostrel")},
    {{PI::PROP_POLL_INTERVAL, PI::PLUGIN_CAPTION_POLL_INTERVAL, 1, 1, ALL_ONES, PI::KIND_BOUNDED,
      PI::UNIT_SECONDS, 1},
     CBoundedValue{30, 2, 255, 1},
     0,
     0,
     true},
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
    EXPECT_TRUE(read(api, PI::PROP_SERIAL_NUMBER).empty());
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
    const std::vector<CProperty> properties = read(api, PI::PROP_POLL_INTERVAL);
    ASSERT_EQ(properties.size(), 1U);
    EXPECT_TRUE(properties[0].GetValue() == CProperty::Value(CBoundedValue{60, 2, 255, 1}));
}

} // namespace
