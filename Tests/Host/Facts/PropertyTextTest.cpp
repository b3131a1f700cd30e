#include "Facts/PropertyText.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"

#include <PI/CaptionId.h>
#include <PI/PropertyId.h>
#include <PI/StateCode.h>

namespace {

using namespace Host::Cli;
using HostTest::property;

class PropertyTextTest : public testing::Test
{
    HostTest::Catalogue m_Catalogue;
};

TEST_F(PropertyTextTest, WritesEachKindOfValue)
{
    EXPECT_EQ(valueText(property(1, 1, "text")), "text");
    EXPECT_EQ(valueText(property(1, PI::UNIT_MIB, std::uint64_t{7})), "7 MiB");
    EXPECT_EQ(valueText(property(1, PI::UNIT_MIB, std::uint64_t{1907729})), "1.82 TiB");
    EXPECT_EQ(valueText(property(1, PI::UNIT_HOURS, std::uint64_t{21930})), "21930 h (2.5 years)");
    EXPECT_EQ(valueText(property(1, 1, std::uint64_t{18446744073709551615ULL})), "18446744073709551615");
    EXPECT_EQ(valueText(property(1, PI::UNIT_CELSIUS, 36.0F)), "36 \u00b0C");
    EXPECT_EQ(valueText(property(1, PI::UNIT_PERCENT, 120, 0, 100, 1)), "120%");
    EXPECT_EQ(valueText(property(1, 1, std::uint32_t{PI::HEALTH_HEALTHY}, std::vector<std::uint32_t>{})),
              "Healthy");
    EXPECT_EQ(valueText(property(1, 1, std::vector<std::uint32_t>{PI::REASON_READ_ONLY, 1},
                                 std::vector<std::uint32_t>{})),
              "Media is read-only; 1");
    EXPECT_EQ(valueText(PI::CProperty(1, false)), "");
}

TEST_F(PropertyTextTest, CaptionsComeFromTheCatalogueOrTheProgram)
{
    PI::CProperty captioned = property(PI::PROP_NAME, 1, "x");
    captioned.SetNlsID(PI::CAPTION_NAME);
    EXPECT_EQ(captionText(captioned), "Name");
    EXPECT_EQ(captionText(property(PI::PROP_LOCATION, 1, "x")), "Location");
    EXPECT_EQ(captionText(property(PI::PROP_MODEL_FAMILY, 1, "x")), "Known model family");
    EXPECT_EQ(captionText(property(31999, 1, "x")), "Property 31999");
}

TEST(NumberText, HasTwoDecimalsAtMost)
{
    EXPECT_EQ(numberText(36), "36");
    EXPECT_EQ(numberText(36.5), "36.5");
    EXPECT_EQ(numberText(0.126), "0.13");
    EXPECT_EQ(numberText(100), "100");
    EXPECT_EQ(numberText(-0.001), "0");
    EXPECT_EQ(numberText(-272), "-272");
}

TEST(DurationText, IsInDaysMonthsOrYears)
{
    EXPECT_EQ(durationText(0), "0 days");
    EXPECT_EQ(durationText(24), "1 day");
    EXPECT_EQ(durationText(60 * 24), "60 days");
    EXPECT_EQ(durationText(61 * 24), "2 months");
    EXPECT_EQ(durationText(8766), "12 months");
    EXPECT_EQ(durationText(2 * 8766), "2.0 years");
    EXPECT_EQ(durationText(876000), "99.9 years");
}

TEST_F(PropertyTextTest, HoursGetTheirSpanFromADayOn)
{
    EXPECT_EQ(hoursText(23), "23 h");
    EXPECT_EQ(hoursText(24), "24 h (1 day)");
}

TEST(SizeText, HasThreeDigitsInTheLargestUnit)
{
    EXPECT_EQ(sizeText(0), "0 MiB");
    EXPECT_EQ(sizeText(1), "1 MiB");
    EXPECT_EQ(sizeText(1023), "1023 MiB");
    EXPECT_EQ(sizeText(1024), "1.00 GiB");
    EXPECT_EQ(sizeText(357707), "349 GiB");
    EXPECT_EQ(sizeText(10235), "10.0 GiB");
    EXPECT_EQ(sizeText(1048575), "1.00 TiB");
    EXPECT_EQ(sizeText(1907729), "1.82 TiB");
    EXPECT_EQ(sizeText(14651136), "14.0 TiB");
    EXPECT_EQ(sizeText(17592186044415ULL), "16.0 EiB");
}

} // namespace
