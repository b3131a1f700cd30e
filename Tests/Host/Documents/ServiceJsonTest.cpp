#include "Documents/ServiceJson.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using namespace Host::Cli;
using Host::DriveAnswer;

constexpr std::uint64_t STARTED = 1'767'225'600'000; // 2026-01-01

class ServiceJsonTest : public testing::Test
{
    HostTest::Catalogue m_Catalogue;
};

DriveAnswer unheard(const std::string& device, const std::string& serial)
{
    DriveAnswer answer;
    answer.m_DeviceName = device;
    answer.m_SerialNumber = serial;
    answer.m_SilentRounds = 2;
    return answer;
}

/** A critical drive that answers, and two that have never answered. */
Snapshot threeDrives()
{
    return Snapshot(Host::ObjectStore(HostTest::topologyOf({{1, "S1", "/dev/nvme0n1"}}), {},
                                      {unheard("/dev/nvme1n1", "S2"), unheard("/dev/nvme2n1", "S3")}),
                    7, STARTED + 60'000);
}

TEST_F(ServiceJsonTest, TheStatusCountsTheDrivesAndSaysWhatIsWrong)
{
    ServiceFigures figures;
    figures.m_Started = STARTED;
    figures.m_PollInterval = 30'000;
    figures.m_ReadErrors = 3;
    figures.m_LastEntry = 12;
    nlohmann::json status = statusJson(threeDrives(), figures, STARTED + 61'000);
    EXPECT_TRUE(status["version"].is_string());
    status.erase("version");
    EXPECT_EQ(status, nlohmann::json::parse(R"({
        "time": "2026-01-01T00:01:01.000Z", "started": "2026-01-01T00:00:00.000Z",
        "state": 2, "stateText": "CRITICAL",
        "message": "nvme0n1 (S1): Critical: Available spare below its threshold, Media is read-only; nvme1n1 (S2): does not answer; nvme2n1 (S3): does not answer; 0 of 3 drives healthy",
        "drives": {"total": 3, "ok": 0, "warning": 0, "critical": 3, "unknown": 0, "silent": 2},
        "round": {"number": 7, "time": "2026-01-01T00:01:00.000Z"}, "pollSeconds": 30, "readErrors": 3,
        "journal": {"lastNumber": 12}})"));
}

TEST_F(ServiceJsonTest, TheStatusOfAServiceInTrouble)
{
    ServiceFigures figures;
    figures.m_Trouble = "no plug-in";
    figures.m_JournalFailure = "disk full";
    const nlohmann::json status = statusJson(Snapshot(Host::ObjectStore({}), 0, 0), figures, STARTED);
    EXPECT_EQ(status["state"], 1);
    EXPECT_EQ(status["trouble"], "no plug-in");
    EXPECT_EQ(status["message"], "the journal cannot be written: disk full; no plug-in");
    EXPECT_EQ(status["journal"], nlohmann::json::parse(R"({"lastNumber": 0, "failure": "disk full"})"));
    EXPECT_FALSE(status.contains("round"));
    EXPECT_FALSE(status.contains("pollSeconds"));
}

TEST_F(ServiceJsonTest, EachDriveHasItsKeyFirst)
{
    const nlohmann::ordered_json document = drivesJson(threeDrives());
    ASSERT_EQ(document["drives"].size(), 3U);
    EXPECT_EQ(document["drives"][0].begin().key(), "key");
    EXPECT_EQ(document["drives"][0]["key"], "S1");
    EXPECT_EQ(document["drives"][0]["capacityMiB"], 1907729);
    EXPECT_EQ(nlohmann::json(document["drives"][1]),
              nlohmann::json::parse(
                  R"({"key": "S2", "device": "/dev/nvme1n1", "serial": "S2", "answering": false})"));
    EXPECT_EQ(drivesJson(Snapshot(Host::ObjectStore({}), 0, 0)).dump(), R"({"drives":[]})");
}

} // namespace
