#include <PI/CaptionId.h>
#include <PI/Property.h>
#include <PI/StateCode.h>

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
    const PI::CProperty settable(PI::PROP_POLL_INTERVAL, true);
    EXPECT_EQ(settable.Id(), PI::PROP_POLL_INTERVAL);
    EXPECT_TRUE(settable.Settable());
    EXPECT_EQ(settable.NlsID(), 1U);
    EXPECT_EQ(settable.Description().attrC, 0xFFFFFFFFU);
    const PI::CProperty fixed(PI::PROP_NAME, false);
    EXPECT_EQ(fixed.Id(), PI::PROP_NAME);
    EXPECT_FALSE(fixed.Settable());
}

TEST(Property, OfWhateverKindIsATextUntilItIsToldOtherwise)
{
    PI::CProperty property(PI::PROP_POLL_INTERVAL, true);
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
    property.SetValue(std::uint32_t{PI::HEALTH_CRITICAL}, Codes{PI::HEALTH_HEALTHY, PI::HEALTH_DEGRADED});
    EXPECT_EQ(std::get<PI::CCodeValue>(property.GetValue()),
              (PI::CCodeValue{PI::HEALTH_CRITICAL, {PI::HEALTH_HEALTHY, PI::HEALTH_DEGRADED}}));
    property.SetValue(Codes{PI::REASON_SPARE_LOW, PI::REASON_READ_ONLY}, Codes{PI::FORESEEN_REASONS[0]});
    EXPECT_EQ(std::get<PI::CCodeListValue>(property.GetValue()),
              (PI::CCodeListValue{{PI::REASON_SPARE_LOW, PI::REASON_READ_ONLY}, {PI::FORESEEN_REASONS[0]}}));
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
    PI::CProperty property(PI::PROP_DATA_WRITTEN, false);
    property.SetNlsID(PI::SHOWN_CAPTION_AVAILABLE_SPARE);
    property.SetUnits(PI::UNIT_TIB);
    property.SetAttrC(0);
    property.SetSubType(8);
    property.SetIconPathID(PI::ICON_ADAPTER_DEGRADED);
    EXPECT_EQ(property.Description().nlsId, PI::SHOWN_CAPTION_AVAILABLE_SPARE);
    EXPECT_EQ(property.Description().units, PI::UNIT_TIB);
    EXPECT_EQ(property.Description().attrC, 0U);
    EXPECT_EQ(property.NlsID(), PI::SHOWN_CAPTION_AVAILABLE_SPARE);
    EXPECT_EQ(property.Units(), PI::UNIT_TIB);
    EXPECT_EQ(property.SubType(), 8U);
    EXPECT_EQ(property.IconPathID(), PI::ICON_ADAPTER_DEGRADED);
}

} // namespace
