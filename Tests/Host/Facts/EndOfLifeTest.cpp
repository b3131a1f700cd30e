#include "Facts/EndOfLife.h"

#include "Host/Built.h"
#include "Host/Catalogue.h"
#include "Host/Objects.h"
#include "Support/FakeDrives.h"
#include "Support/VirtualClock.h"

#include <PI/LifeTimeData.h>
#include <TLXX/NvmeQuery.h>

namespace {

using namespace Host::Cli;
using HostTest::property;
using testing::AllOf;
using testing::HasSubstr;
using Limit = EndOfLife::Limit;

/** A drive of a family with a rating of 2373 TiB (2610 TB), on 2026-01-01. */
class EndOfLifeTest : public testing::Test
{
protected:
    EndOfLifeTest() { PI::SetLifeTimeFolder(HostTest::Built::SHARE); }

    static PI::CObject adapter(const std::string& date, std::uint64_t hours, float written,
                               PI::_UNITS unit = PI::UNIT_TIB, const std::string& model = "SSDPE2KX020T8")
    {
        PI::CObject object;
        object.m_ID = 16;
        object.m_Properties = {property(PI::PROP_MODEL, 1, model),
                               property(PI::PROP_END_OF_LIFE_DATE, 1, date),
                               property(PI::PROP_POWER_ON_HOURS, PI::UNIT_HOURS, hours),
                               property(PI::PROP_DATA_WRITTEN, unit, written),
                               property(PI::PROP_ENDURANCE_USED, PI::UNIT_PERCENT, 50, 0, 100, 1)};
        return object;
    }

    static EndOfLife explained(const PI::CObject& object) { return explainEndOfLife(object).value(); }

    TestSupport::CVirtualClock m_Clock;

private:
    HostTest::Catalogue m_Catalogue;
};

TEST_F(EndOfLifeTest, IsThatOfTheRatingWhereTheDateFollowsFromWriting)
{
    // Half of the rating in 8766 hours, which is one year: the other half lasts another year.
    const EndOfLife end = explained(adapter("2027-01-01", 8766, 1186.5F));
    EXPECT_EQ(end.m_Limit, Limit::Writing);
    EXPECT_EQ(end.m_Date, "2027-01-01");
    EXPECT_EQ(end.m_RemainingHours, 365U * 24);
    EXPECT_EQ(end.m_PowerOnHours, 8766U);
    EXPECT_EQ(end.m_DataWritten->m_Value, 1186.5F);
    EXPECT_EQ(end.m_Rating, 2373U);
    EXPECT_EQ(end.m_Endurance, 50);
    EXPECT_EQ(end.m_Wear, std::nullopt);
    EXPECT_EQ(explained(adapter("2027-01-01", 8766, 1186.5F / 1024, PI::UNIT_PIB)).m_Limit, Limit::Writing);
    EXPECT_EQ(endOfLifeText(end),
              "Computed from 8766 h (12 months) of operation, 1186.5 TiB written, a rating of "
              "2373 TiB, 50% of it used. If it is written to as up to now, the rating is reached "
              "in 12 months.");
}

TEST_F(EndOfLifeTest, IsThatOfTheDrivesOwnCountWhereTheDateComesBefore)
{
    // A quarter of the life in three years leaves nine years, a little less than the writing rate would.
    const EndOfLife end = explained(adapter("2028-12-31", 8766, 10));
    EXPECT_EQ(end.m_Limit, Limit::Wear);
    EXPECT_EQ(end.m_Wear, 25U);
    EXPECT_THAT(endOfLifeText(end),
                HasSubstr("about 25% now, is at its end in 3.0 years, before the rating"));
    EXPECT_EQ(explained(adapter("2026-01-01", 8766, 10)).m_Wear, 100U);
    // Without a rating a date can come from nothing else.
    const EndOfLife unrated = explained(adapter("2027-01-01", 8766, 10, PI::UNIT_TIB, "UNKNOWN"));
    EXPECT_EQ(unrated.m_Wear, 50U);
    EXPECT_EQ(unrated.m_Rating, std::nullopt);
    EXPECT_EQ(unrated.m_Endurance, std::nullopt);
    EXPECT_THAT(endOfLifeText(unrated),
                AllOf(HasSubstr("no known rating"), testing::Not(HasSubstr("reached"))));
}

TEST_F(EndOfLifeTest, IsBeyondTheDateWhereWritingWouldGoOnForLonger)
{
    const EndOfLife end = explained(adapter("2125-12-08", 12, 0.001F));
    EXPECT_EQ(end.m_Limit, Limit::Beyond);
    EXPECT_EQ(end.m_Wear, std::nullopt);
    EXPECT_THAT(endOfLifeText(end), HasSubstr("longer than the hundred years"));
}

TEST_F(EndOfLifeTest, HasNoLimitWhereNothingIsThereToComputeFrom)
{
    PI::CObject silent = adapter("2125-12-08", 12, 1);
    std::erase_if(silent.m_Properties,
                  [](const PI::CProperty& each) { return each.Id() == PI::PROP_DATA_WRITTEN; });
    for (const PI::CObject& object :
         {silent, adapter("2125-12-08", 0, 1), adapter("2125-12-08", 12, 1, PI::UNIT_TIB, "UNKNOWN")}) {
        const EndOfLife end = explained(object);
        EXPECT_EQ(end.m_Limit, Limit::None);
        EXPECT_THAT(endOfLifeText(end), HasSubstr("Too little is known"));
    }
}

/** The same with a drive whose own count of wear the toolkit has read. */
class EndOfLifeByPagesTest : public EndOfLifeTest
{
protected:
    static constexpr char LAST_DATE[] = "2125-12-08";

    /** An adapter of an unrated model whose drive gave these pages last. */
    PI::CObject asked(const std::string& vendor, std::uint8_t percentageUsed, std::uint8_t attribute,
                      const std::string& date = LAST_DATE, const std::string& model = "UNKNOWN")
    {
        TestSupport::CFakeDrive drive(0);
        drive.m_Health.PercentageUsed = percentageUsed;
        drive.LegacyLog(attribute, 100);
        m_Drives.Remove(drive.m_DeviceName);
        m_Drives.Add(drive);
        TLXX::NVME_IDENTIFY_CONTROLLER controller{};
        TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
        TLXX::VendorLogPage page{};
        (void)TLXX::NVMeStorageQueryPropertyIdentifyController(drive.m_DeviceName, controller);
        (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(drive.m_DeviceName, log);
        (void)TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage(drive.m_DeviceName, 0xCA, page);
        PI::CObject object = adapter(date, 8766, 10, PI::UNIT_TIB, model);
        object.m_Properties.push_back(property(PI::PROP_SERIAL_NUMBER, 1, controller.sSerialNumber()));
        object.m_Properties.push_back(property(PI::PROP_VENDOR, 1, vendor));
        return object;
    }

    TestSupport::CFakeDrives m_Drives;
};

TEST_F(EndOfLifeByPagesTest, IsOverWhereTheWearAttributeIsUsedUp)
{
    const EndOfLife end = explained(asked("INTEL", 0, 0));
    EXPECT_EQ(end.m_Limit, Limit::Worn);
    EXPECT_EQ(end.m_Wear, 100U);
    EXPECT_THAT(endOfLifeText(end), AllOf(HasSubstr("has used 100% of its life: it is fully worn"),
                                          HasSubstr("The date does not take this into account")));
    EXPECT_EQ(explained(asked("INTEL", 0, 100, LAST_DATE, "SSDPED1K375GA")).m_Limit, Limit::Worn)
        << "this line counts upwards";
    EXPECT_NE(explained(asked("INTEL", 0, 0, LAST_DATE, "SSDPED1K375GA")).m_Limit, Limit::Worn);
    EXPECT_EQ(explained(asked("SAMSUNG", 0, 0)).m_Limit, Limit::None) << "its log says nothing of the kind";
}

TEST_F(EndOfLifeByPagesTest, IsOverWhereTheHealthLogSaysSo)
{
    for (const std::string date : {LAST_DATE, "2027-01-01"}) {
        const EndOfLife end = explained(asked("SAMSUNG", 103, 0, date));
        EXPECT_EQ(end.m_Limit, Limit::Worn);
        EXPECT_EQ(end.m_Wear, 103U);
    }
    EXPECT_THAT(endOfLifeText(explained(asked("SAMSUNG", 100, 0, "2026-01-01"))),
                testing::Not(HasSubstr("The date does not")));
    EXPECT_NE(explained(asked("SAMSUNG", 99, 0)).m_Limit, Limit::Worn);
}

TEST_F(EndOfLifeByPagesTest, IsBeyondTheDateWhereWearWouldGoOnForLonger)
{
    EXPECT_EQ(explained(asked("INTEL", 0, 99)).m_Limit, Limit::Beyond);
    EXPECT_EQ(explained(asked("INTEL", 0, 100)).m_Limit, Limit::None) << "a new drive tells no rate";
}

TEST_F(EndOfLifeByPagesTest, ShowsTheWearThatTheDateWasComputedFrom)
{
    const EndOfLife end = explained(asked("INTEL", 7, 60, "2027-06-01"));
    EXPECT_EQ(end.m_Limit, Limit::Wear);
    EXPECT_EQ(end.m_Wear, 40U);
}

TEST_F(EndOfLifeTest, IsOverWhereTheRatingIsPassed)
{
    const EndOfLife end = explained(adapter("2026-01-01", 41002, 3000));
    EXPECT_EQ(end.m_Limit, Limit::Writing);
    EXPECT_EQ(end.m_RemainingHours, 0U);
    EXPECT_THAT(endOfLifeText(end), HasSubstr("has been written; plan to replace it"));
}

TEST_F(EndOfLifeTest, IsNotExplainedWithoutADateOrHours)
{
    for (const char* date : {"", "never", "2026-13-01", "2026-02-30", "2026-1-1", "20260-01-0"})
        EXPECT_EQ(explainEndOfLife(adapter(date, 1, 1)), std::nullopt) << date;
    PI::CObject silent = adapter("2027-01-01", 1, 1);
    std::erase_if(silent.m_Properties,
                  [](const PI::CProperty& each) { return each.Id() == PI::PROP_POWER_ON_HOURS; });
    EXPECT_EQ(explainEndOfLife(silent), std::nullopt);
    EXPECT_EQ(explainEndOfLife(PI::CObject()), std::nullopt);
}

} // namespace
