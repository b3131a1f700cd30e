#include "Commands/CheckCommand.h"

#include "Host/Writable.h"

#include <PI/ErrorCode.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {

using namespace Host::Cli;
using enum Verdict;

DriveCheck checked(const std::string& device, const std::string& key, Verdict verdict,
                   const std::string& reason)
{
    DriveCheck check;
    writable(check.m_Drive).m_Device = device;
    check.m_Key = key;
    check.m_Judgement = {verdict, reason};
    return check;
}

TEST(CheckCommand, SaysHowManyDrivesAreHealthy)
{
    const DriveCheck healthy = checked("/dev/nvme0n1", "S0", Ok, "Healthy");
    EXPECT_EQ(checkLine({healthy}, ""), "OSTREL OK: 1 drive healthy\n");
    EXPECT_EQ(checkLine({healthy, healthy}, ""), "OSTREL OK: 2 drives healthy\n");
}

TEST(CheckCommand, NamesTheTroubledDrivesTheWorstFirst)
{
    const std::vector<DriveCheck> drives = {
        checked("/dev/nvme0n1", "S0", Ok, "Healthy"), checked("/dev/nvme1n1", "S1", Unknown, "not read"),
        checked("/dev/nvme2n1", "S2", Warning, "Degraded"), checked("", "S3", Critical, "Critical: A, B"),
        checked("/dev/nvme4n1", "S4", Warning, "Degraded, too")};
    EXPECT_EQ(worstOf(drives), Critical);
    EXPECT_EQ(checkLine(drives, ""),
              "OSTREL CRITICAL: S3: Critical: A, B; nvme2n1 (S2): Degraded; nvme4n1 (S4): Degraded, too; "
              "nvme1n1 (S1): not read; 1 of 5 drives healthy\n");
}

TEST(CheckCommand, TakesTheWorstVerdict)
{
    const auto worst = [](const std::vector<Verdict>& verdicts) {
        std::vector<DriveCheck> drives;
        for (const Verdict verdict : verdicts)
            drives.push_back(checked("", "", verdict, ""));
        return worstOf(drives);
    };
    EXPECT_EQ(worst({Ok, Ok}), Ok);
    EXPECT_EQ(worst({Ok, Unknown, Ok}), Unknown);
    EXPECT_EQ(worst({Warning, Unknown}), Warning);
    EXPECT_EQ(worst({Unknown, Critical, Warning}), Critical);
    EXPECT_EQ(worst({}), Unknown);
}

TEST(CheckCommand, AppendsTheFiguresOfEveryDrive)
{
    DriveCheck first = checked("/dev/nvme0n1", "S0", Ok, "Healthy");
    writable(first.m_Drive).m_Spare = 98;
    DriveCheck last = checked("/dev/nvme2n1", "S2", Ok, "Healthy");
    writable(last.m_Drive).m_Temperature = 30;
    EXPECT_EQ(checkLine({first, checked("", "S1", Ok, "Healthy"), last}, ""),
              "OSTREL OK: 3 drives healthy | 'S0_spare'=98% 'S2_temperature'=30C\n");
}

TEST(CheckCommand, LetsNoTextOfADriveOrAFileBreakTheLine)
{
    const std::string line =
        checkLine({checked("/dev/a|b", "S\n'1\"", Critical, "bad | \"worse\"\n")}, "f|o\no.json");
    EXPECT_EQ(line,
              "OSTREL CRITICAL: simulated fleet fo o.json: ab (S 1): bad worse ; 0 of 1 drive healthy\n");
}

TEST(CheckCommand, TellsInOneLineWhyThereIsNoVerdict)
{
    EXPECT_EQ(noVerdict("There is no \"x\".\nThese are there:\n  a\n  b", false, false),
              "OSTREL UNKNOWN: There is no x. These are there: a b\n");
}

TEST(CheckCommand, TellsInADocumentWhyThereIsNoVerdict)
{
    const auto document = nlohmann::json::parse(
        noVerdict("Refused.", true, true, Host::RequestResult{1, PI::ERR_NO_SUPPORTED_HARDWARE}));
    EXPECT_EQ(document, nlohmann::json::parse(R"({"format": 1, "simulated": true, "state": 3,
        "stateText": "UNKNOWN", "message": "Refused.", "drives": [], "error": {"request": 1, "code": 20001,
        "name": "ERR_NO_SUPPORTED_HARDWARE", "message": "Refused."}})"));
}

} // namespace
