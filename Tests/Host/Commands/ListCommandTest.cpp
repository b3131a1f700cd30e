#include "Commands/ListCommand.h"

#include "Base/Text.h"
#include "Base/Time.h"
#include "Host/Catalogue.h"
#include "Host/Objects.h"

#include <PI/StateCode.h>
#include <TLX/Clock.h>
#include <TLXX/NvmeQuery.h>

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class ListCommandTest : public testing::Test
{
protected:
    static Host::Cli::Drive longDrive()
    {
        Host::Cli::Drive drive;
        drive.m_Device = "/dev/nvme12n1";
        drive.m_Vendor = "SAMSUNG";
        drive.m_Model = std::string(20, 'A') + std::string(20, 'B');
        drive.m_Serial = "01234567890123456789";
        drive.m_Firmware = "FIRMWARE";
        drive.m_CapacityMiB = 1907729;
        drive.m_Temperature = 110;
        drive.m_Wear = 1200;
        drive.m_Health = {PI::HEALTH_CRITICAL, "Critical"};
        drive.m_Reasons = {{PI::REASON_TEMPERATURE, "Temperature outside its limits"},
                           {PI::REASON_SPARE_LOW, "Available spare below its threshold"},
                           {PI::REASON_READ_ONLY, "Media is read-only"}};
        return drive;
    }

    static void expectWidth(const std::string& text, std::size_t width)
    {
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = text.find('\n', start);
            EXPECT_LE(Host::displayWidth(text.substr(start, end - start)), width) << text;
            start = end + 1;
        }
    }

private:
    HostTest::Catalogue m_Catalogue;
};

TEST_F(ListCommandTest, HasOneLineADriveWithWholeTextsInAPipe)
{
    EXPECT_EQ(
        Host::Cli::listText({longDrive()}, {}),
        "Device    Vendor   Model                                     Serial                Firmware  "
        "Capacity  "
        "  Temp   Wear  Health\n"
        "nvme12n1  SAMSUNG  AAAAAAAAAAAAAAAAAAAABBBBBBBBBBBBBBBBBBBB  01234567890123456789  FIRMWARE  1.82 "
        "TiB  "
        "110 \u00b0C  1200%  Critical: Temperature outside its limits; Available spare below its threshold; "
        "Media is read-only\n");
}

TEST_F(ListCommandTest, FitsATerminalOf80Columns)
{
    const std::string text = Host::Cli::listText({longDrive()}, {80, false});
    expectWidth(text, 80);
    EXPECT_THAT(text, HasSubstr("\u2026"));
    EXPECT_THAT(text, HasSubstr("Firmware"));
    EXPECT_THAT(text, Not(HasSubstr("Too narrow")));
    EXPECT_THAT(
        text, HasSubstr("\n\nnvme12n1: Temperature outside its limits; Available spare below its threshold;\n"
                        "          Media is read-only\n"));
}

TEST_F(ListCommandTest, SaysBelowTheTableWhatIsNotAsItLooks)
{
    Host::Cli::Drive drive = longDrive();
    drive.m_Reasons.clear();
    drive.m_HealthLogRead = true;
    drive.m_Place = Host::Cli::ShownPlace::WithoutSegment;
    EXPECT_THAT(Host::Cli::listText({drive}, {80, false}), Not(HasSubstr("nvme12n1: ")));
    drive.m_HealthLogRead = false;
    drive.m_Place = Host::Cli::ShownPlace::Another;
    drive.m_PciAddress = "0000:03:00.0";
    drive.m_Location = "PCI:Bus=2";
    EXPECT_THAT(Host::Cli::listText({drive}, {80, false}),
                HasSubstr("\n\nnvme12n1: its health log was not read\n"
                          "nvme12n1: is at 0000:03:00.0, but is shown at PCI:Bus=2\n"));
}

TEST_F(ListCommandTest, MarksADriveThatDoesNotAnswerAndKeepsItsValues)
{
    Host::Cli::Drive drive = longDrive();
    drive.m_Reasons.clear();
    drive.m_Answer.emplace();
    drive.m_Answer->m_Status = TLXX::STATUS_NO_ANSWER;
    drive.m_Answer->m_LastAnswer = drive.m_Answer->m_SilentSince = TLX::Misc::now();
    const std::string since = Host::timeOfDayText(*drive.m_Answer->m_SilentSince);
    EXPECT_THAT(Host::Cli::listText({drive}, {}),
                AllOf(HasSubstr("110 \u00b0C"),
                      HasSubstr("  does not answer since " + since + "; its health was: Critical\n")));
    EXPECT_THAT(Host::Cli::listText({drive}, {120, true}),
                AllOf(HasSubstr("110 \u00b0C"), HasSubstr("\033[1;31mNo answer\033[0m"),
                      HasSubstr("nvme12n1: does not answer since " + since + ": ")));
    drive.m_Answer->m_Answering = true;
    EXPECT_THAT(Host::Cli::listText({drive}, {120, false}), Not(HasSubstr("answer")));
}

TEST_F(ListCommandTest, FitsATerminalOf60Columns)
{
    const std::string text = Host::Cli::listText({longDrive()}, {60, false});
    expectWidth(text, 60);
    EXPECT_THAT(text, HasSubstr("Too narrow for: Vendor, Firmware\n"));
    EXPECT_THAT(text, HasSubstr("Critical"));
}

TEST_F(ListCommandTest, KeepsDeviceSerialAndHealthOn30Columns)
{
    const std::string text = Host::Cli::listText({longDrive()}, {30, false});
    const std::string table = text.substr(0, text.find("Too narrow for"));
    expectWidth(table, 30);
    EXPECT_THAT(table, testing::MatchesRegex("Device +Serial +Health *\nnvme12n1 .*Critical\n"));
    expectWidth(text.substr(text.find("\n\n") + 2), 30);
}

TEST_F(ListCommandTest, ShortensNothingOn200Columns)
{
    const std::string text = Host::Cli::listText({longDrive()}, {200, false});
    expectWidth(text, 200);
    EXPECT_THAT(text, Not(HasSubstr("\u2026")));
}

TEST_F(ListCommandTest, ShowsADashForWhatIsUnknown)
{
    EXPECT_EQ(Host::Cli::listText({Host::Cli::Drive{}}, {}),
              "Device  Vendor  Model  Serial  Firmware  Capacity  Temp  Wear  Health\n"
              "-       -       -      -       -                -     -     -  -\n");
}

TEST_F(ListCommandTest, ColoursTheHealthAndStillSaysIt)
{
    EXPECT_THAT(Host::Cli::listText({longDrive()}, {80, true}), HasSubstr("\033[1;31mCritical\033[0m"));
    Host::Cli::Drive unread = longDrive();
    unread.m_Health = {std::nullopt, "Unknown"};
    EXPECT_THAT(Host::Cli::listText({unread}, {200, true}), HasSubstr("  Unknown\n"));
}

} // namespace
