#include "Support/PluginUnderTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using PI::CBoundedValue;
using PI::CProperty;

/** What is asked of one property, in numbers of its own. */
struct CExpected
{
    std::uint32_t m_Id;
    bool m_Settable;
    std::uint32_t m_Caption;
    std::uint32_t m_Units;
    CProperty::Value m_Value;
};

constexpr std::uint32_t NO_CAPTION = 1;
constexpr std::uint32_t NO_UNITS = 1;

const std::vector<CExpected> EXPECTED = {
    {30137, false, NO_CAPTION, NO_UNITS, std::string("Plugin:ID=313")},
    {30007, false, 23334, NO_UNITS, std::string("NVMe-Plugin")},
    {30099, false, 23339, NO_UNITS, std::string("7.16.3")},
    {30003, false, 23338, NO_UNITS, std::string("Ostrel")},
    {30005, true, 23335, 21007, CBoundedValue{30, 2, 255, 1}},
};

void expectEqual(const CProperty& property, const CExpected& expected)
{
    EXPECT_EQ(property.Id(), expected.m_Id);
    EXPECT_EQ(property.Settable(), expected.m_Settable);
    EXPECT_EQ(property.NlsID(), expected.m_Caption);
    EXPECT_EQ(property.Units(), expected.m_Units);
    EXPECT_TRUE(property.GetValue() == expected.m_Value) << expected.m_Id;
}

std::vector<CProperty> read(TestSupport::CPluginUnderTest& api, std::uint32_t propertyId)
{
    std::vector<CProperty> properties(7); // whatever the list held before must go
    EXPECT_EQ(api.GetPluginProperties(api.m_Plugin, properties, propertyId), 0U);
    return properties;
}

TEST(PluginProperties, AreTheFiveRowsInOrder)
{
    TestSupport::CPluginUnderTest api;
    const std::vector<CProperty> properties = read(api, PI::ALL_PROPERTIES);
    ASSERT_EQ(properties.size(), EXPECTED.size());
    for (std::size_t i = 0; i < EXPECTED.size(); ++i)
        expectEqual(properties[i], EXPECTED[i]);
    EXPECT_EQ(properties[0].Description().attrC, 0U);
}

TEST(PluginProperties, CanBeReadOneByOne)
{
    TestSupport::CPluginUnderTest api;
    for (const CExpected& expected : EXPECTED) {
        const std::vector<CProperty> properties = read(api, expected.m_Id);
        ASSERT_EQ(properties.size(), 1U) << expected.m_Id;
        expectEqual(properties[0], expected);
    }
}

TEST(PluginProperties, AnUnknownOneGivesAnEmptyListAndNoFailure)
{
    TestSupport::CPluginUnderTest api;
    EXPECT_TRUE(read(api, 30022).empty());
    EXPECT_TRUE(read(api, 0).empty());
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
