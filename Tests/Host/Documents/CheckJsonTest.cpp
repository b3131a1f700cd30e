#include "Documents/CheckJson.h"

#include "Host/Writable.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using namespace Host::Cli;

TEST(CheckJson, HasTheVerdictAndEachDriveWithItsOwn)
{
    DriveCheck check;
    writable(check.m_Drive).m_Device = "/dev/nvme0n1";
    writable(check.m_Drive).m_Spare = 98;
    check.m_Key = "S0";
    check.m_Judgement = {Verdict::Warning, "Degraded"};
    EXPECT_EQ(nlohmann::json(checkJson(Verdict::Critical, "bad", {check})),
              nlohmann::json::parse(R"({"state": 2, "stateText": "CRITICAL", "message": "bad", "drives": [
                  {"key": "S0", "state": 1, "stateText": "WARNING", "message": "Degraded",
                   "drive": {"device": "/dev/nvme0n1", "spare": 98}}]})"));
}

} // namespace
