#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"
#include "Support/TraceCapture.h"
#include "Support/TryElsewhere.h"

#include <PI/ErrorCode.h>
#include <TLX/Event.h>
#include <TLX/FastMutex.h>
#include <TLX/TraceSink.h>
#include <TLX/WaitResult.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using TestSupport::CCapturedLine;
using TestSupport::CFakeDrive;
using TestSupport::CPluginUnderTest;
using TestSupport::CTraceCapture;

constexpr std::uint64_t PLUGIN_MODULE = 0x0139'0000'0000'0000;

class Topology : public testing::Test
{
public:
    void Initialize()
    {
        PI::CRequestData data = std::vector<PI::CAdapterID>();
        testing::internal::CaptureStdout();
        const std::uint32_t result = m_Api.Request(PI::REQUEST_INITIALIZE, 0, data);
        testing::internal::GetCapturedStdout();
        ASSERT_EQ(result, PI::ERR_SUCCESS);
    }

    /** Request 4 with a list that is not empty before. A host that asks again may pass such a list. */
    std::uint32_t Get()
    {
        PI::CRequestData data = std::vector<PI::CObject>(3);
        const std::uint32_t result = m_Api.Request(PI::REQUEST_GET_TOPOLOGY, 0, data);
        m_Objects = std::get<std::vector<PI::CObject>>(data);
        return result;
    }

    TestSupport::CFakeDrives m_Drives;
    CPluginUnderTest m_Api;
    std::vector<PI::CObject> m_Objects;
};

/**
 * While it lives, calls a function with the text of each trace line of the module, on the thread that traces.
 */
class CTraceWatch
{
public:
    explicit CTraceWatch(std::function<void(const std::string&)> watch)
    {
        TLX::Trace::setSink(std::make_shared<CSink>(std::move(watch)));
        TLX::Trace::setMask(313, ~0U);
    }
    ~CTraceWatch()
    {
        TLX::Trace::setMask(313, 0);
        TLX::Trace::setSink(nullptr);
    }
    CTraceWatch(const CTraceWatch&) = delete;
    CTraceWatch& operator=(const CTraceWatch&) = delete;

private:
    class CSink : public TLX::Trace::ISink
    {
    public:
        explicit CSink(std::function<void(const std::string&)> watch) : m_Watch(std::move(watch)) {}
        void Write(const TLX::Trace::CLine& line) noexcept override { m_Watch(std::string(line.m_Text)); }

    private:
        std::function<void(const std::string&)> m_Watch;
    };
};

class TopologyTrace : public Topology, public testing::WithParamInterface<std::uint32_t>
{};

} // namespace

TEST_F(Topology, WithoutAdaptersAndDrivesIsThePluginAlone)
{
    EXPECT_EQ(Get(), PI::ERR_SUCCESS);
    ASSERT_EQ(m_Objects.size(), 1U);
    EXPECT_EQ(m_Objects[0].m_Properties.size(), 5U);
    EXPECT_EQ(m_Objects[0].m_Operations.size(), 1U);
}

TEST_F(Topology, ListsThePluginThenTheAdaptersThenTheDrives)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1));
    Initialize();
    EXPECT_EQ(Get(), PI::ERR_SUCCESS);
    ASSERT_EQ(m_Objects.size(), 5U);
    std::vector<std::uint32_t> types;
    std::vector<std::uint64_t> ids;
    for (const PI::CObject& object : m_Objects) {
        types.push_back(object.m_Type);
        ids.push_back(object.m_ID);
        EXPECT_THAT(object.m_Properties, Not(IsEmpty()));
    }
    EXPECT_THAT(types, ElementsAre(PI::TYPE_PLUGIN, PI::TYPE_ADAPTER, PI::TYPE_ADAPTER,
                                   PI::TYPE_PHYSICAL_DRIVE, PI::TYPE_PHYSICAL_DRIVE));
    EXPECT_THAT(ids, ElementsAre(PLUGIN_MODULE, PLUGIN_MODULE | 1U, PLUGIN_MODULE | 3U, PLUGIN_MODULE | 2U,
                                 PLUGIN_MODULE | 4U));

    EXPECT_THAT(m_Objects[0].m_Children, ElementsAre(ids[1], ids[2]));
    EXPECT_THAT(m_Objects[1].m_Parents, ElementsAre(ids[0]));
    EXPECT_THAT(m_Objects[1].m_Children, ElementsAre(ids[3]));
    EXPECT_THAT(m_Objects[3].m_Parents, ElementsAre(ids[1]));
    EXPECT_THAT(m_Objects[4].m_Parents, ElementsAre(ids[2]));
}

TEST_F(Topology, OffersOperationsOnThePluginAlone)
{
    m_Drives.Add(CFakeDrive(0));
    Initialize();
    ASSERT_EQ(Get(), PI::ERR_SUCCESS);
    ASSERT_EQ(m_Objects.size(), 3U);
    ASSERT_EQ(m_Objects[0].m_Operations.size(), 1U);
    EXPECT_EQ(m_Objects[0].m_Operations[0].Id(), PI::OPERATION_GET_EVENTS);
    EXPECT_THAT(m_Objects[1].m_Operations, IsEmpty());
    EXPECT_THAT(m_Objects[2].m_Operations, IsEmpty());
}

TEST_F(Topology, IsTheSameWhenAskedAgain)
{
    m_Drives.Add(CFakeDrive(0));
    Initialize();
    ASSERT_EQ(Get(), PI::ERR_SUCCESS);
    const std::vector<PI::CObject> first = m_Objects;
    ASSERT_EQ(Get(), PI::ERR_SUCCESS);
    ASSERT_EQ(m_Objects.size(), first.size());
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(m_Objects[i].m_ID, first[i].m_ID);
        EXPECT_EQ(m_Objects[i].m_Properties.size(), first[i].m_Properties.size());
        EXPECT_EQ(m_Objects[i].m_Operations.size(), first[i].m_Operations.size());
    }
}

TEST_F(Topology, AModelThatIsNothingButAMakerIsAGeneralFailureAndThePluginLivesOn)
{
    m_Drives.Add(CFakeDrive(0).Vendor(0x8086).Model("INTEL"));
    Initialize();
    EXPECT_EQ(Get(), PI::ERR_GENERAL_FAILURE);
    EXPECT_THAT(m_Objects, IsEmpty());

    EXPECT_EQ(TestSupport::tryElsewhere(m_Api.m_DataLock), TLX::Threading::WaitResult::Taken)
        << "the failure must not keep the lock";

    m_Api.m_Adapters[0].m_Model = "INTEL SSDPE2KX010T8";
    m_Api.m_PhysicalDrives[0].m_Model = "INTEL SSDPE2KX010T8";
    EXPECT_EQ(Get(), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Objects.size(), 3U);
}

TEST_F(Topology, WaitsForTheDataLock)
{
    m_Drives.Add(CFakeDrive(0));
    Initialize();
    TLX::Threading::CEvent waitsOrIsDone;
    ASSERT_EQ(waitsOrIsDone.Init(false, true), TLX::Threading::WaitResult::Taken);
    const CTraceWatch watch([&](const std::string& text) {
        if (text == "Before m_DataLock.Wait (sg)")
            waitsOrIsDone.Set();
    });
    std::atomic<bool> done = false;
    std::future<std::uint32_t> request;
    {
        const TLX::Threading::CScopedGuard guard(m_Api.m_DataLock);
        request = std::async(std::launch::async, [&] {
            const std::uint32_t result = Get();
            done = true;
            waitsOrIsDone.Set();
            return result;
        });
        EXPECT_EQ(waitsOrIsDone.Wait(), TLX::Threading::WaitResult::Taken);
        EXPECT_FALSE(done);
    }
    EXPECT_EQ(request.get(), PI::ERR_SUCCESS);
    EXPECT_TRUE(done);
}

TEST_F(Topology, HoldsTheDataLockFromTheFirstObjectToTheLast)
{
    m_Drives.Add(CFakeDrive(0));
    Initialize();
    std::vector<std::string> free;
    std::vector<std::string> held;
    const CTraceWatch watch([&](const std::string& text) {
        const bool taken = TestSupport::tryElsewhere(m_Api.m_DataLock) == TLX::Threading::WaitResult::Taken;
        (taken ? free : held).push_back(text);
    });
    ASSERT_EQ(Get(), PI::ERR_SUCCESS);
    EXPECT_EQ(free, (std::vector<std::string>{"ENTER GetTopology", "Before m_DataLock.Wait (sg)"}));
    ASSERT_GE(held.size(), 2U);
    EXPECT_EQ(held.front(), "After m_DataLock.Wait (sg)");
    EXPECT_EQ(held.back(), "LEAVE GetTopology");
}

TEST_P(TopologyTrace, ShowsTheLinesOfTheMaskInTheirOrder)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1));
    Initialize();
    const std::string unit = "Ostrel/Src/Ostrel";
    const std::string function = "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::GetTopology";
    const std::vector<CCapturedLine> all = {
        {2, unit, function, "ENTER GetTopology"},
        {8, unit, function, "Before m_DataLock.Wait (sg)"},
        {8, unit, function, "After m_DataLock.Wait (sg)"},
        {4, unit, function, "GetTopology() Adapter m_ID=0x139000000000001"},
        {4, unit, function, "GetTopology() Adapter m_ID=0x139000000000003"},
        {4, unit, function, "GetTopology() m_Adapters = 2"},
        {4, unit, function, "GetTopology() PhysicalDrive m_ID=0x139000000000002"},
        {4, unit, function, "GetTopology() PhysicalDrive m_ID=0x139000000000004"},
        {4, unit, function, "GetTopology() m_PhysicalDrives = 2"},
        {2, unit, function, "LEAVE GetTopology"},
    };
    std::vector<CCapturedLine> shown;
    for (const CCapturedLine& line : all)
        if ((line.m_Level & GetParam()) != 0)
            shown.push_back(line);

    const CTraceCapture capture(GetParam());
    ASSERT_EQ(Get(), PI::ERR_SUCCESS);
    std::vector<CCapturedLine> own = capture.Lines();
    std::erase_if(own, [&](const CCapturedLine& line) { return line.m_Function != function; });
    EXPECT_EQ(own, shown);
}

INSTANTIATE_TEST_SUITE_P(Masks, TopologyTrace, testing::Values(0U, 2U, 4U, 8U, 16U, ~0U));
