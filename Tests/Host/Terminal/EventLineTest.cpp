#include "Terminal/EventLine.h"

#include "Base/Time.h"
#include "Host/Catalogue.h"

#include <PI/EventCode.h>

namespace {

using namespace Host::Cli;
using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class EventLineTest : public testing::Test
{
protected:
    static Drive driveOf(const std::string& serial)
    {
        Drive result;
        result.m_Serial = serial;
        result.m_Model = "MODEL";
        result.m_Device = "/dev/nvme" + serial;
        return result;
    }

    static PI::CEvent event(std::uint32_t id, const std::string& name)
    {
        PI::CEvent result;
        result.m_Id = id;
        result.m_Severity = PI::EVENT_SEVERITY_INFORMATION;
        result.SetSource(name);
        result.SetPlaceHolder1(name);
        return result;
    }

private:
    HostTest::Catalogue m_Catalogue;
};

TEST_F(EventLineTest, TheLineTellsTimeSeverityTextAndDrive)
{
    DriveEvent removed{event(PI::EVENT_ADAPTER_REMOVED, "Adapter (A)"), driveOf("A")};
    removed.m_Event.m_Time = 1'767'225'600'000;
    const std::string line = eventLine(removed, {});
    EXPECT_THAT(line, AnyOf(StartsWith("2025-12-31 "), StartsWith("2026-01-01 ")))
        << "wherever this machine is";
    EXPECT_EQ(line.substr(19), "  Information  Adapter (A) was removed. (nvmeA, MODEL)\n");
}

TEST_F(EventLineTest, SeveritiesHaveColours)
{
    DriveEvent warning{event(PI::EVENT_TEMPERATURE_NEAR_CRITICAL, "n"), std::nullopt};
    const Host::Cli::Screen coloured = {80, true};
    warning.m_Event.m_Severity = PI::EVENT_SEVERITY_WARNING;
    EXPECT_THAT(eventLine(warning, coloured), HasSubstr("\033[33mWarning\033[0m      n: "));
    warning.m_Event.m_Severity = PI::EVENT_SEVERITY_ERROR;
    EXPECT_THAT(eventLine(warning, coloured), HasSubstr("\033[1;31mError\033[0m        n: "));
}

TEST_F(EventLineTest, ADrivesTextsForgeNothingOnATerminal)
{
    DriveEvent forged{event(PI::EVENT_ADAPTER_REMOVED, "a\n2026-01-01 00:00:00  Error  b\033[2J"),
                      driveOf("S\r")};
    EXPECT_THAT(eventLine(forged, {}), AllOf(HasSubstr("a?2026"), HasSubstr("b?[2J"), HasSubstr("S?)\n"),
                                             Not(HasSubstr("\033")), Not(HasSubstr("\r"))));
}

TEST_F(EventLineTest, AnEntryWithALongIntervalSaysSinceWhenItMayBeSo)
{
    constexpr std::uint64_t hour = 3'600'000;
    Host::Journal::Entry entry;
    entry.m_Text = "The service started.";
    entry.m_Begin = 10 * hour;
    entry.m_End = 12 * hour;
    EXPECT_THAT(entryLine(entry, {}), testing::EndsWith("The service started. It happened after " +
                                                        Host::localTimeText(10 * hour) + ".\n"));
    entry.m_Begin = 12 * hour - hour / 6;
    EXPECT_THAT(entryLine(entry, {}), testing::EndsWith("The service started.\n"));
}

} // namespace
