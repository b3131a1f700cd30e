#include "Facts/Performance.h"

#include "Host/Writable.h"

#include <PI/Property.h>

#include <gmock/gmock.h>

#include <limits>

namespace {

using namespace Host::Cli;

Drive knownDrive()
{
    Drive drive;
    drive.m_Temperature = 36.5F;
    drive.m_Spare = 98;
    drive.m_SpareThreshold = 10;
    drive.m_DataRead = {1, PI::UNIT_GIB};
    drive.m_DataWritten = {2, PI::UNIT_MIB};
    drive.m_PowerOnHours = 11;
    drive.m_MediaErrors = 13;
    writable(drive.m_HealthLog).PercentageUsed = 120;
    writable(drive.m_HealthLog).UnsafeShutdowns = {7, 0};
    writable(drive.m_Identify).WCTEMP = 273 + 70;
    writable(drive.m_Identify).CCTEMP = 273 + 85;
    return drive;
}

std::string textOf(const Drive& drive)
{
    return performanceText("S1", performanceOf(drive));
}

TEST(Performance, HasEachFigureWithItsUnitAndTheDrivesOwnLimits)
{
    EXPECT_EQ(textOf(knownDrive()),
              "'S1_temperature'=36.5C;70;85 'S1_percentageUsed'=120% 'S1_spare'=98%;10: "
              "'S1_mediaErrors'=13c 'S1_unsafeShutdowns'=7c 'S1_powerOnHours'=11c "
              "'S1_dataReadBytes'=1073741824B 'S1_dataWrittenBytes'=2097152B");
}

TEST(Performance, LeavesOutWhatIsNotKnown)
{
    EXPECT_EQ(textOf({}), "");
    Drive drive;
    drive.m_Temperature = -3;
    EXPECT_EQ(textOf(drive), "'S1_temperature'=-3C");
    drive.m_Temperature = std::numeric_limits<float>::quiet_NaN();
    drive.m_MediaErrors = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(textOf(drive), "");
}

TEST(Performance, HasNoOldFiguresOfADriveThatDoesNotAnswer)
{
    Drive drive = knownDrive();
    drive.m_Answer.emplace();
    EXPECT_EQ(textOf(drive), "");
    drive.m_Answer->m_Answering = true;
    EXPECT_NE(textOf(drive), "");
}

TEST(Performance, HasALimitAloneWhereTheOtherIsMissing)
{
    Drive drive = knownDrive();
    writable(drive.m_Identify).WCTEMP = 0;
    EXPECT_THAT(textOf(drive), testing::StartsWith("'S1_temperature'=36.5C;;85 "));
    drive.m_Identify.reset();
    EXPECT_THAT(textOf(drive), testing::StartsWith("'S1_temperature'=36.5C "));
}

TEST(Performance, HasNoSpareOfADriveThatReportsNone)
{
    Drive drive;
    drive.m_Spare = 0;
    drive.m_SpareThreshold = 0;
    EXPECT_EQ(textOf(drive), "");
    drive.m_SpareThreshold = 5;
    EXPECT_EQ(textOf(drive), "'S1_spare'=0%;5:");
}

TEST(Performance, LetsNoKeyBreakItsLabel)
{
    Drive drive;
    drive.m_Spare = 3;
    EXPECT_EQ(performanceText("a'b=c|d\"e`f\ng h\x1B", performanceOf(drive)), "'abcdef g h?_spare'=3%");
}

TEST(Performance, TextsAreOneLine)
{
    EXPECT_EQ(monitoringText("There is no \"x|y\".\nThese\n  are there: 'a' 36 \u00b0C\r"),
              "There is no xy. These are there: a 36 \u00b0C?");
}

} // namespace
