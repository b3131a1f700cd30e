#include "Facts/EndOfLife.h"

#include "Facts/PageFields.h"
#include "Host/Built.h"
#include "Host/Catalogue.h"
#include "Host/Writable.h"
#include "Support/VirtualClock.h"

#include <PI/LifeTimeData.h>

namespace {

using namespace Host::Cli;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Limit = EndOfLife::Limit;

constexpr char LAST_DATE[] = "2125-12-08";

/** A drive of a family that is rated for 2373 TiB (2610 TB), on 2026-01-01. */
class EndOfLifeTest : public testing::Test
{
protected:
    EndOfLifeTest() { PI::SetLifeTimeFolder(HostTest::Built::SHARE); }

    /**
     * A drive that has run for `hours`, has been written so many tebibytes, and counts `used` percent itself.
     */
    static Drive drive(std::uint64_t hours, double tebibytes, std::uint8_t used = 0,
                       const std::string& date = "2027-01-01", const std::string& model = "SSDPE2KX020T8")
    {
        Drive result;
        result.m_AdapterId = 16;
        result.m_Model = model;
        result.m_Wear = 50;
        result.m_EndOfLifeDate = date;
        writable(result.m_HealthLog).Counter128 = {hours, 0};
        writable(result.m_HealthLog).DataUnitsWritten = {
            static_cast<std::uint64_t>(tebibytes * 0x1p40 / 512000), 0};
        writable(result.m_HealthLog).PercentageUsed = used;
        return result;
    }

    static EndOfLife explained(const Drive& drive) { return explainEndOfLife(drive).value(); }

    TestSupport::CVirtualClock m_Clock;

private:
    HostTest::Catalogue m_Catalogue;
};

TEST_F(EndOfLifeTest, IsThatOfTheRatingWhereWritingEndsFirst)
{
    // Half of the rating took 8766 hours, which is one year. So the other half lasts another year.
    const EndOfLife end = explained(drive(8766, 1186.5, 10));
    EXPECT_EQ(end.m_Limit, Limit::Writing);
    EXPECT_EQ(end.m_Date, "2027-01-01");
    EXPECT_NEAR(static_cast<double>(end.m_RemainingHours), 8766, 1);
    EXPECT_EQ(end.m_PowerOnHours, 8766U);
    EXPECT_NEAR(end.m_DataWritten->m_Value, 1186.5F / 1024, 0.001F);
    EXPECT_EQ(end.m_DataWritten->m_Unit, PI::UNIT_PIB);
    EXPECT_EQ(end.m_Rating, 2373U);
    EXPECT_EQ(end.m_Endurance, 50);
    EXPECT_EQ(end.m_Wear, std::nullopt);
    EXPECT_FALSE(end.m_DateTooLate);
    EXPECT_EQ(endOfLifeText(end),
              "Computed from 8766 h (12 months) of operation, 1.16 PiB written, a rating of "
              "2373 TiB, 50% of it used. If it is written to as up to now, the rating is reached "
              "in 12 months.");
}

TEST_F(EndOfLifeTest, IsThatOfTheDrivesOwnCountWhereThatEndsFirst)
{
    // A quarter of its life took one year, so three years are left.
    const EndOfLife end = explained(drive(8766, 10, 25));
    EXPECT_EQ(end.m_Limit, Limit::Wear);
    EXPECT_EQ(end.m_Wear, 25U);
    EXPECT_EQ(end.m_RemainingHours, 3U * 8766);
    EXPECT_THAT(
        endOfLifeText(end),
        HasSubstr("own count of wear, 25% now, reaches 100% in 3.0 years, before the rating is reached."));
    const EndOfLife unrated = explained(drive(8766, 10, 50, "2027-01-01", "UNKNOWN"));
    EXPECT_EQ(unrated.m_Limit, Limit::Wear);
    EXPECT_EQ(unrated.m_Rating, std::nullopt);
    EXPECT_EQ(unrated.m_Endurance, std::nullopt);
    EXPECT_THAT(endOfLifeText(unrated), AllOf(HasSubstr("no known rating"), Not(HasSubstr("reached"))));
}

TEST_F(EndOfLifeTest, TellsWhenTheDateTakesNoAccountOfTheWear)
{
    Drive worn = drive(8766, 10, 25);
    EXPECT_THAT(endOfLifeText(explained(worn)), Not(HasSubstr("The date does not")));
    worn.m_DateCountsWear = false;
    EXPECT_THAT(endOfLifeText(explained(worn)), HasSubstr("The date does not take this into account."));
    Drive written = drive(8766, 1186.5, 10);
    written.m_DateCountsWear = false;
    EXPECT_THAT(endOfLifeText(explained(written)), Not(HasSubstr("The date does not")));
}

TEST_F(EndOfLifeTest, IsOverWhereTheDriveSaysSo)
{
    for (const char* date : {LAST_DATE, "2027-01-01"}) {
        const EndOfLife end = explained(drive(8766, 10, 103, date));
        EXPECT_EQ(end.m_Limit, Limit::Worn);
        EXPECT_EQ(end.m_Wear, 103U);
        EXPECT_EQ(end.m_RemainingHours, 0U);
        EXPECT_THAT(endOfLifeText(end), AllOf(HasSubstr("has used 103% of its life: it is fully worn"),
                                              HasSubstr("The date does not take this into account")));
    }
    EXPECT_THAT(endOfLifeText(explained(drive(8766, 10, 100, "2026-01-01"))),
                Not(HasSubstr("The date does not")));
    EXPECT_NE(explained(drive(8766, 10, 99)).m_Limit, Limit::Worn);
}

TEST_F(EndOfLifeTest, IsBeyondTheDateWhereItWouldGoOnForLonger)
{
    EXPECT_EQ(explained(drive(8766, 10, 1, LAST_DATE, "UNKNOWN")).m_RemainingHours, 99U * 8766);
    EXPECT_EQ(explained(drive(9000, 10, 1, LAST_DATE, "UNKNOWN")).m_Limit, Limit::Beyond);
    const EndOfLife end = explained(drive(12, 0.001, 0, LAST_DATE));
    EXPECT_EQ(end.m_Limit, Limit::Beyond);
    EXPECT_EQ(end.m_Wear, std::nullopt);
    EXPECT_THAT(endOfLifeText(end), HasSubstr("longer than the hundred years"));
}

TEST_F(EndOfLifeTest, HasNoLimitWhereNothingIsThereToComputeFrom)
{
    Drive uncounted = drive(12, 1);
    writable(uncounted.m_HealthLog).DataUnitsWritten = {UNKNOWN_COUNTER, 0};
    EXPECT_EQ(explained(uncounted).m_DataWritten, std::nullopt);
    for (const Drive& each : {uncounted, drive(0, 1), drive(12, 1, 0, LAST_DATE, "UNKNOWN")}) {
        const EndOfLife end = explained(each);
        EXPECT_EQ(end.m_Limit, Limit::None);
        EXPECT_THAT(endOfLifeText(end), HasSubstr("Too little is known"));
    }
}

TEST_F(EndOfLifeTest, IsOverWhereTheRatingIsPassed)
{
    const EndOfLife end = explained(drive(41002, 3000));
    EXPECT_EQ(end.m_Limit, Limit::Writing);
    EXPECT_EQ(end.m_RemainingHours, 0U);
    EXPECT_THAT(endOfLifeText(end), HasSubstr("has been written; plan to replace it"));
    Drive absurd = drive(41002, 0);
    writable(absurd.m_HealthLog).DataUnitsWritten = {UNKNOWN_COUNTER - 1, 0};
    EXPECT_EQ(explained(absurd).m_RemainingHours, 0U) << "more bytes than 64 bits hold are many";
    EXPECT_EQ(explained(absurd).m_DataWritten->m_Unit, PI::UNIT_EIB);
}

TEST_F(EndOfLifeTest, IsNotExplainedWithoutADateOrALogWithHours)
{
    EXPECT_EQ(explainEndOfLife(drive(1, 1, 0, "")), std::nullopt);
    EXPECT_EQ(explainEndOfLife(drive(UNKNOWN_COUNTER, 1)), std::nullopt);
    Drive silent = drive(1, 1);
    silent.m_HealthLog.reset();
    EXPECT_EQ(explainEndOfLife(silent), std::nullopt);
}

} // namespace
