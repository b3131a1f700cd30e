#include "Records/Trace.h"

#include "Support/TraceCapture.h"
#include "Support/TryElsewhere.h"

#include <TLX/WaitResult.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace NAMESPACE_Ostrel;
using TestSupport::CCapturedLine;
using TestSupport::CTraceCapture;
using TLX::Threading::Native_OS::CFastMutex;

void underLock(CFastMutex& mutex)
{
    const CTracedGuard guard(mutex, "m_DataLock", OSTREL_HERE);
    EXPECT_EQ(TestSupport::tryElsewhere(mutex), TLX::Threading::WaitResult::TimedOut);
}

int counted(int& count)
{
    return ++count;
}

} // namespace

TEST(Trace, ALineIsWrittenWhenTheMaskHasItsLevel)
{
    const CTraceCapture capture(8);
    OSTREL_TRACE(TRACE_FLOW) << "flow";
    OSTREL_TRACE(TRACE_LOCK) << "lock %d" << 7;
    EXPECT_THAT(capture.Texts(), testing::ElementsAre("lock 7"));
}

TEST(Trace, ADisabledLevelDoesNotEvaluateItsArguments)
{
    const CTraceCapture capture(16);
    int count = 0;
    OSTREL_TRACE(TRACE_FLOW) << "%d" << counted(count);
    EXPECT_EQ(count, 0);
    OSTREL_TRACE(TRACE_PROGRESS) << "%d" << counted(count);
    EXPECT_EQ(count, 1);
}

TEST(Trace, MaskZeroWritesNothing)
{
    const CTraceCapture capture(0);
    for (const TraceLevel level : {TRACE_FLOW, TRACE_WAKE, TRACE_LOCK, TRACE_PROGRESS, TRACE_DATABASE}) {
        EXPECT_FALSE(traceEnabled(level));
        OSTREL_TRACE(level) << "text";
    }
    EXPECT_THAT(capture.Lines(), testing::IsEmpty());
}

TEST(Trace, AnyHighBitOfTheMaskShowsTheDatabase)
{
    for (unsigned bit = 0; bit < 32; ++bit) {
        const CTraceCapture capture(1U << bit);
        EXPECT_EQ(traceEnabled(TRACE_DATABASE), bit >= 7) << bit;
    }
    const CTraceCapture capture(256);
    OSTREL_TRACE(TRACE_DATABASE) << "row";
    EXPECT_THAT(capture.Texts(), testing::ElementsAre("row"));
}

TEST(TracedGuard, HoldsTheLockAndTracesBothSidesOfTheWaitAsTheCallers)
{
    CFastMutex mutex;
    ASSERT_EQ(mutex.Init(), TLX::Threading::WaitResult::Taken);
    const CTraceCapture capture(8);
    underLock(mutex);
    EXPECT_EQ(TestSupport::tryElsewhere(mutex), TLX::Threading::WaitResult::Taken);
    ASSERT_EQ(capture.Lines().size(), 2U);
    for (const CCapturedLine& line : capture.Lines()) {
        EXPECT_EQ(line.m_Level, 8U);
        EXPECT_EQ(line.m_SourceUnit, "Tests/Ostrel/Records");
        EXPECT_THAT(line.m_Function, testing::EndsWith("underLock"));
    }
    EXPECT_THAT(capture.Texts(),
                testing::ElementsAre("Before m_DataLock.Wait (sg)", "After m_DataLock.Wait (sg)"));
}

TEST(TracedGuard, IsSilentWithoutTheLockLevel)
{
    CFastMutex mutex;
    ASSERT_EQ(mutex.Init(), TLX::Threading::WaitResult::Taken);
    const CTraceCapture capture(~8U);
    underLock(mutex);
    EXPECT_THAT(capture.Lines(), testing::IsEmpty());
}
