#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"
#include "Support/SilentBackend.h"
#include "Support/TraceCapture.h"

#include <PI/ErrorCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using PI::CRequestData;
using TestSupport::CPluginUnderTest;

using AdapterIDs = std::vector<PI::CAdapterID>;
using Objects = std::vector<PI::CObject>;
using Properties = std::vector<PI::CProperty>;
using Operations = std::vector<PI::COperation>;

/** A machine whose enumeration throws. */
class CThrowingMachine : public TestSupport::CSilentBackend
{
public:
    explicit CThrowingMachine(std::function<void()> failure) : m_Failure(std::move(failure)) {}

    std::vector<TLXX::CDeviceEntry> Enumerate(const TLXX::DeviceWalk&) override
    {
        m_Failure();
        return {};
    }

private:
    std::function<void()> m_Failure;
};

/** Request 1 with `count` entries in the list. The machine's enumeration calls `failure`. */
std::uint32_t initializeWhile(std::function<void()> failure, CRequestData& data)
{
    TestSupport::CFakeDrives restoresTheMachine;
    TLXX::setDeviceBackend(std::make_shared<CThrowingMachine>(std::move(failure)));
    CPluginUnderTest plugin;
    return plugin.Request(PI::REQUEST_INITIALIZE, 0, data);
}

PI::CProperty pollInterval(std::int32_t value)
{
    PI::CProperty property(PI::PROP_POLL_INTERVAL, true);
    property.SetValue(value, 2, 255, 1);
    return property;
}

} // namespace

TEST(PluginApi, ANewObjectHasEmptyListsAndTheDefaultInterval)
{
    CPluginUnderTest plugin;
    EXPECT_EQ(plugin.m_Version, 2U);
    EXPECT_EQ(plugin.m_HostContext, 0U);
    EXPECT_EQ(plugin.m_HostCallback, nullptr);
    EXPECT_EQ(plugin.m_IDCounter, 0U);
    EXPECT_TRUE(plugin.m_AdapterIDs.empty());
    EXPECT_TRUE(plugin.m_Events.empty());
    EXPECT_TRUE(plugin.m_Adapters.empty());
    EXPECT_TRUE(plugin.m_PhysicalDrives.empty());
    EXPECT_TRUE(plugin.m_NVMeDevices.empty());
}

class UnknownRequest : public testing::TestWithParam<std::int32_t>
{};

TEST_P(UnknownRequest, IsRefusedWithNothingTouched)
{
    CPluginUnderTest plugin;
    const TestSupport::CTraceCapture capture(~0U);
    CRequestData list = AdapterIDs(2);
    EXPECT_EQ(plugin.Request(GetParam(), 0, list), PI::ERR_UNKNOWN_REQUEST);
    EXPECT_EQ(std::get<AdapterIDs>(list).size(), 2U);

    CRequestData nothing;
    EXPECT_EQ(plugin.Request(GetParam(), 0, nothing), PI::ERR_UNKNOWN_REQUEST);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(nothing));
    EXPECT_THAT(capture.Lines(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Codes, UnknownRequest,
                         testing::Values(0, -1, 11, std::numeric_limits<std::int32_t>::min(),
                                         std::numeric_limits<std::int32_t>::max()));

TEST(PluginApi, AContainerOfTheWrongTypeIsAGeneralFailureAndStaysAsItWas)
{
    const std::vector<std::size_t> expected = {
        1, // an index into the variant: `AdapterIDs` for request 1, and so on
        1, std::variant_npos, 2, 3, 4, 4, 5, 6, 6};
    const CRequestData candidates[] = {
        std::monostate(),
        AdapterIDs(2),
        Objects(2),
        Properties(2),
        pollInterval(7),
        Operations(2),
        PI::COperation(PI::COperationTemplate{PI::OPERATION_GET_EVENTS, 6, 1, 1, 1, false, 0, 1, 1})};
    for (std::int32_t request = 1; request <= 10; ++request) {
        for (const CRequestData& candidate : candidates) {
            const std::size_t right = expected[static_cast<std::size_t>(request) - 1];
            if (right == std::variant_npos || candidate.index() == right)
                continue;
            SCOPED_TRACE(testing::Message() << "request " << request << ", container " << candidate.index());
            TestSupport::CFakeDrives drives;
            CPluginUnderTest plugin;
            const TestSupport::CTraceCapture capture(~0U);
            CRequestData data = candidate;
            EXPECT_EQ(plugin.Request(request, 0, data), PI::ERR_GENERAL_FAILURE);
            EXPECT_THAT(capture.Lines(), testing::IsEmpty());
            ASSERT_EQ(data.index(), candidate.index());
            std::visit(
                [](const auto& now) {
                    if constexpr (requires { now.size(); }) {
                        EXPECT_EQ(now.size(), 2U);
                    } else if constexpr (requires { now.Words(); }) {
                        EXPECT_EQ(now.Id(), PI::OPERATION_GET_EVENTS);
                    } else if constexpr (requires { now.Settable(); }) {
                        EXPECT_EQ(std::get<PI::CBoundedValue>(now.GetValue()).m_Value, 7);
                    }
                },
                data);
        }
    }
}

TEST(PluginApi, AFailedInitializeHandsBackAnEmptyList)
{
    const TestSupport::CFakeDrives noDrives;
    CPluginUnderTest plugin;
    CRequestData data = AdapterIDs(2);
    testing::internal::CaptureStdout();
    EXPECT_EQ(plugin.Request(PI::REQUEST_INITIALIZE, 0, data), PI::ERR_NO_SUPPORTED_HARDWARE);
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(std::get<AdapterIDs>(data).empty());
}

TEST(PluginApi, ASuccessfulInitializeLeavesTheListAsTheHandlerFilledIt)
{
    TestSupport::CFakeDrives drives;
    drives.Add(TestSupport::CFakeDrive(3));
    CPluginUnderTest plugin;
    CRequestData data = AdapterIDs(1);
    testing::internal::CaptureStdout();
    EXPECT_EQ(plugin.Request(PI::REQUEST_INITIALIZE, 0, data), PI::ERR_SUCCESS);
    testing::internal::GetCapturedStdout();
    PI::CAdapterID added;
    added.m_Bus = 3;
    EXPECT_THAT(std::get<AdapterIDs>(data), testing::ElementsAre(PI::CAdapterID(), added));
}

TEST(PluginApi, RunningOutOfMemoryInAHandlerIsOutOfMemoryWithAnEmptyList)
{
    CRequestData data = AdapterIDs(2);
    EXPECT_EQ(initializeWhile([] { throw std::bad_alloc(); }, data), PI::ERR_OUT_OF_MEMORY);
    EXPECT_TRUE(std::get<AdapterIDs>(data).empty());
}

TEST(PluginApi, DevicesThatCannotBeLookedForCountAsNone)
{
    CRequestData data = AdapterIDs(2);
    EXPECT_EQ(initializeWhile([] { throw std::runtime_error("bus reset"); }, data),
              PI::ERR_NO_SUPPORTED_HARDWARE);
    EXPECT_TRUE(std::get<AdapterIDs>(data).empty());
}

TEST(PluginApi, AnyOtherExceptionInAHandlerIsAGeneralFailureWithAnEmptyList)
{
    CRequestData data = AdapterIDs(2);
    EXPECT_EQ(initializeWhile([] { throw std::logic_error("bus reset"); }, data), PI::ERR_GENERAL_FAILURE);
    EXPECT_TRUE(std::get<AdapterIDs>(data).empty());

    data = AdapterIDs(2);
    EXPECT_EQ(initializeWhile([] { throw 7; }, data), PI::ERR_GENERAL_FAILURE);
    EXPECT_TRUE(std::get<AdapterIDs>(data).empty());
}
