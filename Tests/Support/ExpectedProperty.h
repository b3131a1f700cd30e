#pragma once

#include <PI/Property.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TestSupport {

/** A property as its host must see it. */
struct CExpectedProperty
{
    PI::_PROPERTY_DESCRIPTION m_Description;
    PI::CProperty::Value m_Value;
    std::uint32_t m_SubType = 0;
    std::uint32_t m_Icon = 0;
    bool m_Settable = false;
};

inline void expectProperty(const PI::CProperty& property, const CExpectedProperty& expected)
{
    SCOPED_TRACE(expected.m_Description.propertyId);
    EXPECT_EQ(property.Id(), expected.m_Description.propertyId);
    EXPECT_EQ(property.NlsID(), expected.m_Description.nlsId);
    EXPECT_EQ(property.Description().attrA, expected.m_Description.attrA);
    EXPECT_EQ(property.Description().attrB, expected.m_Description.attrB);
    EXPECT_EQ(property.Description().attrC, expected.m_Description.attrC);
    EXPECT_EQ(property.Kind(), expected.m_Description.valueKind);
    EXPECT_EQ(property.Units(), expected.m_Description.units);
    EXPECT_EQ(property.Description().attrD, expected.m_Description.attrD);
    EXPECT_EQ(property.SubType(), expected.m_SubType);
    EXPECT_EQ(property.IconPathID(), expected.m_Icon);
    EXPECT_EQ(property.Settable(), expected.m_Settable);
    EXPECT_EQ(property.GetValue(), expected.m_Value);
}

inline std::vector<std::uint32_t> propertyIds(const std::vector<PI::CProperty>& properties)
{
    std::vector<std::uint32_t> ids;
    ids.reserve(properties.size());
    for (const PI::CProperty& property : properties)
        ids.push_back(property.Id());
    return ids;
}

/** Checks number, order and every field. */
inline void expectProperties(const std::vector<PI::CProperty>& properties,
                             const std::vector<CExpectedProperty>& expected)
{
    ASSERT_EQ(properties.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        expectProperty(properties[i], expected[i]);
}

} // namespace TestSupport
