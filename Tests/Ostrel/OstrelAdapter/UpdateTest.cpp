#include "Records/Adapter.h"
#include "Support/TraceCapture.h"
#include "Support/VirtualClock.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using NAMESPACE_Ostrel::CNVMeAdapter;
using testing::ElementsAre;
using testing::IsEmpty;

/** An event's identifier and severity. */
using Event = std::pair<std::uint32_t, std::uint32_t>;

class AdapterUpdate : public testing::Test
{
protected:
    AdapterUpdate()
    {
        m_Live.m_ID = 0x0139000000000007;
        m_Live.m_Name = "NVMe Intel PCI Adapter (A)";
        m_Fresh.m_ID = 9;
        m_Fresh.m_Name = "another name";
    }

    std::vector<Event> Update(std::uint32_t before, std::uint32_t after)
    {
        m_Live.m_WarningFlags = before;
        m_Fresh.m_WarningFlags = after;
        m_Events.clear();
        m_Live.Update(m_Fresh, m_Events);
        std::vector<Event> events;
        for (const PI::CEvent& event : m_Events)
            events.emplace_back(event.m_Id, event.m_Severity);
        return events;
    }

    TestSupport::CVirtualClock m_Clock{5'000};
    CNVMeAdapter m_Live;
    CNVMeAdapter m_Fresh;
    std::vector<PI::CEvent> m_Events;
};

} // namespace

TEST_F(AdapterUpdate, EachWarningHasItsEvent)
{
    EXPECT_THAT(Update(0, 0x10),
                ElementsAre(Event(PI::EVENT_MEMORY_BACKUP_FAILED, PI::EVENT_SEVERITY_ERROR)));
    EXPECT_THAT(Update(0, 0x04),
                ElementsAre(Event(PI::EVENT_RELIABILITY_DEGRADED, PI::EVENT_SEVERITY_WARNING)));
    EXPECT_THAT(Update(0, 0x40),
                ElementsAre(Event(PI::EVENT_TEMPERATURE_CRITICAL, PI::EVENT_SEVERITY_ERROR)));
    EXPECT_THAT(Update(0, 0x80),
                ElementsAre(Event(PI::EVENT_TEMPERATURE_ABOVE_CRITICAL, PI::EVENT_SEVERITY_ERROR)));
    EXPECT_THAT(Update(0, 0x20),
                ElementsAre(Event(PI::EVENT_TEMPERATURE_NEAR_CRITICAL, PI::EVENT_SEVERITY_WARNING)));
    EXPECT_THAT(Update(0, 0x200), ElementsAre(Event(PI::EVENT_TEMPERATURE_HIGH, PI::EVENT_SEVERITY_WARNING)));
    EXPECT_THAT(Update(0, 0x01), ElementsAre(Event(PI::EVENT_SPARE_LOW, PI::EVENT_SEVERITY_ERROR)));
}

TEST_F(AdapterUpdate, SeveralComeInTheOrderOfTheTable)
{
    EXPECT_THAT(Update(0, 0x14),
                ElementsAre(Event(PI::EVENT_MEMORY_BACKUP_FAILED, PI::EVENT_SEVERITY_ERROR),
                            Event(PI::EVENT_RELIABILITY_DEGRADED, PI::EVENT_SEVERITY_WARNING)));
    EXPECT_THAT(Update(0, 0xFFFFFFFF),
                ElementsAre(Event(PI::EVENT_MEMORY_BACKUP_FAILED, PI::EVENT_SEVERITY_ERROR),
                            Event(PI::EVENT_RELIABILITY_DEGRADED, PI::EVENT_SEVERITY_WARNING),
                            Event(PI::EVENT_TEMPERATURE_CRITICAL, PI::EVENT_SEVERITY_ERROR),
                            Event(PI::EVENT_TEMPERATURE_ABOVE_CRITICAL, PI::EVENT_SEVERITY_ERROR),
                            Event(PI::EVENT_TEMPERATURE_NEAR_CRITICAL, PI::EVENT_SEVERITY_WARNING),
                            Event(PI::EVENT_TEMPERATURE_HIGH, PI::EVENT_SEVERITY_WARNING),
                            Event(PI::EVENT_SPARE_LOW, PI::EVENT_SEVERITY_ERROR)));
}

TEST_F(AdapterUpdate, OnlyABitThatComesUpMakesAnEvent)
{
    EXPECT_THAT(Update(0x05, 0x04), IsEmpty());
    EXPECT_THAT(Update(0x14, 0x14), IsEmpty());
    EXPECT_THAT(Update(0x04, 0x14),
                ElementsAre(Event(PI::EVENT_MEMORY_BACKUP_FAILED, PI::EVENT_SEVERITY_ERROR)));
    EXPECT_THAT(Update(0x10, 0x05),
                ElementsAre(Event(PI::EVENT_RELIABILITY_DEGRADED, PI::EVENT_SEVERITY_WARNING),
                            Event(PI::EVENT_SPARE_LOW, PI::EVENT_SEVERITY_ERROR)));
    EXPECT_THAT(Update(0, 0), IsEmpty());
}

TEST_F(AdapterUpdate, BitsWithoutARowMakeNoEvent)
{
    EXPECT_THAT(Update(0, 0x02 | 0x08 | 0x100 | 0x80000000), IsEmpty());
}

TEST_F(AdapterUpdate, TheLastWarningThatGoesMakesOneEvent)
{
    EXPECT_THAT(Update(0x04, 0),
                ElementsAre(Event(PI::EVENT_WARNINGS_CLEARED, PI::EVENT_SEVERITY_INFORMATION)));
    EXPECT_THAT(Update(0xFF, 0),
                ElementsAre(Event(PI::EVENT_WARNINGS_CLEARED, PI::EVENT_SEVERITY_INFORMATION)));
    EXPECT_THAT(Update(0x02, 0),
                ElementsAre(Event(PI::EVENT_WARNINGS_CLEARED, PI::EVENT_SEVERITY_INFORMATION)));
}

TEST_F(AdapterUpdate, TheEventSpeaksOfTheLiveRecord)
{
    Update(0, 0x14);
    ASSERT_EQ(m_Events.size(), 2U);
    for (const PI::CEvent& event : m_Events) {
        EXPECT_EQ(event.m_Source, 0x0139000000000007U);
        EXPECT_EQ(event.m_Time, 5'000U);
        EXPECT_EQ(event.SourceText(), "NVMe Intel PCI Adapter (A)");
        EXPECT_EQ(event.PlaceHolder1(), "NVMe Intel PCI Adapter (A)");
        EXPECT_EQ(event.PlaceHolder2(), "");
    }
}

TEST_F(AdapterUpdate, AppendsToWhatIsThere)
{
    m_Live.m_WarningFlags = 0;
    m_Fresh.m_WarningFlags = 4;
    m_Events.resize(2);
    m_Live.Update(m_Fresh, m_Events);
    EXPECT_EQ(m_Events.size(), 3U);
}

TEST_F(AdapterUpdate, TracesTheFlagsAtLevel2)
{
    const TestSupport::CTraceCapture capture(~0U);
    Update(0x1A, 0x200);
    EXPECT_THAT(capture.Lines(), ElementsAre(TestSupport::CCapturedLine{
                                     2, "Ostrel/Src/OstrelAdapter", "NAMESPACE_Ostrel::CNVMeAdapter::Update",
                                     "Update () 1a -> 200"}));
}
