#include <PI/Property.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <variant>
#include <vector>

namespace {

using Codes = std::vector<std::uint32_t>;

TEST(Property, StartsWithoutAValue)
{
    const PI::CProperty property;
    EXPECT_TRUE(std::holds_alternative<std::monostate>(property.GetValue()));
    EXPECT_EQ(property.Id(), 0U);
    EXPECT_EQ(property.NlsID(), 1U);
    EXPECT_EQ(property.Units(), 1U);
    EXPECT_EQ(property.IconPathID(), 0U);
    EXPECT_FALSE(property.Settable());
}

TEST(Property, TakesIdentifierAndSettableFlag)
{
    const PI::CProperty settable(30005, true);
    EXPECT_EQ(settable.Id(), 30005U);
    EXPECT_TRUE(settable.Settable());
    EXPECT_EQ(settable.NlsID(), 1U);
    EXPECT_EQ(settable.Description().attrC, 0xFFFFFFFFU);
    const PI::CProperty fixed(30007, false);
    EXPECT_EQ(fixed.Id(), 30007U);
    EXPECT_FALSE(fixed.Settable());
}

TEST(Property, OfWhateverKindIsATextUntilItIsToldOtherwise)
{
    PI::CProperty property(30005, true);
    EXPECT_EQ(property.Kind(), 2U);
    property.SetKind(PI::KIND_BOUNDED);
    EXPECT_EQ(property.Kind(), 7U);
    EXPECT_EQ(property.Description().valueKind, 7U);
}

TEST(Property, HoldsTexts)
{
    PI::CProperty property;
    property.SetValue("NVMe-Plugin");
    EXPECT_EQ(std::get<std::string>(property.GetValue()), "NVMe-Plugin");
    property.SetValue(std::string("with\0zero", 9));
    EXPECT_EQ(std::get<std::string>(property.GetValue()), std::string("with\0zero", 9));
    const char* missing = nullptr;
    property.SetValue(missing);
    EXPECT_EQ(std::get<std::string>(property.GetValue()), "");
}

TEST(Property, HoldsNumbers)
{
    PI::CProperty property;
    property.SetValue(std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(std::get<std::uint64_t>(property.GetValue()), 0xFFFFFFFFFFFFFFFFU);
    property.SetValue(-1.5F);
    EXPECT_EQ(std::get<float>(property.GetValue()), -1.5F);
}

TEST(Property, HoldsABoundedValueEvenOutsideItsBounds)
{
    PI::CProperty property;
    property.SetValue(200, 0, 100, 1);
    EXPECT_EQ(std::get<PI::CBoundedValue>(property.GetValue()), (PI::CBoundedValue{200, 0, 100, 1}));
    std::int32_t value = 0;
    std::int32_t minimum = -1;
    std::int32_t maximum = 0;
    std::int32_t step = 0;
    EXPECT_TRUE(property.GetValue(value, minimum, maximum, step));
    EXPECT_EQ(value, 200);
    EXPECT_EQ(minimum, 0);
    EXPECT_EQ(maximum, 100);
    EXPECT_EQ(step, 1);
}

TEST(Property, HoldsCodesEvenOutsideTheAllowedOnes)
{
    PI::CProperty property;
    property.SetValue(std::uint32_t{40095}, Codes{40024, 40150});
    EXPECT_EQ(std::get<PI::CCodeValue>(property.GetValue()), (PI::CCodeValue{40095, {40024, 40150}}));
    property.SetValue(Codes{40460, 40452}, Codes{40387});
    EXPECT_EQ(std::get<PI::CCodeListValue>(property.GetValue()),
              (PI::CCodeListValue{{40460, 40452}, {40387}}));
}

TEST(Property, ReadsNoBoundedValueOutOfAnotherType)
{
    PI::CProperty property;
    std::int32_t value = 11;
    std::int32_t minimum = 12;
    std::int32_t maximum = 13;
    std::int32_t step = 14;
    EXPECT_FALSE(property.GetValue(value, minimum, maximum, step));
    property.SetValue("60");
    EXPECT_FALSE(property.GetValue(value, minimum, maximum, step));
    property.SetValue(std::uint64_t{60});
    EXPECT_FALSE(property.GetValue(value, minimum, maximum, step));
    EXPECT_EQ(value, 11);
    EXPECT_EQ(minimum, 12);
    EXPECT_EQ(maximum, 13);
    EXPECT_EQ(step, 14);
}

TEST(Property, ReplacementsShowInTheDescription)
{
    PI::CProperty property(30490, false);
    property.SetNlsID(35034);
    property.SetUnits(PI::UNIT_TIB);
    property.SetAttrC(0);
    property.SetSubType(8);
    property.SetIconPathID(24002);
    EXPECT_EQ(property.Description().nlsId, 35034U);
    EXPECT_EQ(property.Description().units, 21004U);
    EXPECT_EQ(property.Description().attrC, 0U);
    EXPECT_EQ(property.NlsID(), 35034U);
    EXPECT_EQ(property.Units(), 21004U);
    EXPECT_EQ(property.SubType(), 8U);
    EXPECT_EQ(property.IconPathID(), 24002U);
}

} // namespace
