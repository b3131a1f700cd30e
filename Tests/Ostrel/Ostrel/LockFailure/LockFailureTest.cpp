#include "FailingSystem.h"
#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"
#include "Support/TraceCapture.h"

#include <PI/ErrorCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

struct CCase
{
    const char* m_Name;
    int m_Mutexes;
    int m_Events;
};

void PrintTo(const CCase& each, std::ostream* stream)
{
    *stream << each.m_Name;
}

class LockFailure : public testing::TestWithParam<CCase>
{
public:
    ~LockFailure() override { FailingSystem::let(FailingSystem::ALL, FailingSystem::ALL); }
};

} // namespace

TEST_P(LockFailure, EndsInitializeBeforeTheDrivesAreLookedFor)
{
    TestSupport::CFakeDrives drives;
    drives.Add(TestSupport::CFakeDrive(0));
    TestSupport::CPluginUnderTest plugin;
    PI::CRequestData data = std::vector<PI::CAdapterID>(2);
    const TestSupport::CTraceCapture capture(~0U);
    FailingSystem::let(GetParam().m_Mutexes, GetParam().m_Events);

    testing::internal::CaptureStdout();
    const std::uint32_t result = plugin.Request(PI::REQUEST_INITIALIZE, 0, data);
    const std::string console = testing::internal::GetCapturedStdout();

    EXPECT_EQ(result, PI::ERR_LOCK_INITIALIZATION_FAILED);
    EXPECT_TRUE(std::get<std::vector<PI::CAdapterID>>(data).empty());
    EXPECT_EQ(console, "");
    EXPECT_THAT(drives.Queries(), testing::IsEmpty());
    const std::string function = "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::Initialize";
    EXPECT_THAT(capture.Lines(),
                testing::ElementsAre(
                    TestSupport::CCapturedLine{2, "Ostrel/Src/Ostrel", function, "ENTER Initialize()"},
                    TestSupport::CCapturedLine{2, "Ostrel/Src/Ostrel", function,
                                               std::string("LEAVE Initialize() ") + GetParam().m_Name +
                                                   ".Init() -> PI::ERR_LOCK_INITIALIZATION_FAILED 131"}));
}

INSTANTIATE_TEST_SUITE_P(Each, LockFailure,
                         testing::Values(CCase{"m_DataLock", 0, -1}, CCase{"m_PrivateEventsLock", 1, -1},
                                         CCase{"m_ForceWorker", -1, 0}, CCase{"m_StopRequest", -1, 1},
                                         CCase{"m_PrivateEvent", -1, 2}),
                         [](const auto& each) { return std::string(each.param.m_Name); });
