#include "LineCapture.h"

#include <TLX/TraceStreamBuffer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <thread>
#include <vector>

namespace {

using namespace TLX::Trace;

CLine sampleLine()
{
    return {.m_Time = 1'709'251'199'999ULL,
            .m_ModuleNumber = 313,
            .m_ModuleName = "Ostrel",
            .m_Level = 16,
            .m_SourceUnit = "Ostrel/Src/Ostrel",
            .m_Function = "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::Initialize",
            .m_SourceLine = 120,
            .m_Text = "the text"};
}

TEST(FormatLine, HasTimeModuleLevelUnitFunctionLineAndText)
{
    EXPECT_EQ(formatLine(sampleLine()), "2024-02-29T23:59:59.999Z Ostrel 16 Ostrel/Src/Ostrel "
                                        "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::Initialize:120 the text");
}

TEST(FormatLine, StaysOneLineWhateverItIsMadeFrom)
{
    CLine line = sampleLine();
    line.m_ModuleName = "a\nb";
    line.m_SourceUnit = "c\r";
    line.m_Function = "d\x1b";
    line.m_Text = "first\nsecond \\n";
    EXPECT_EQ(formatLine(line), "2024-02-29T23:59:59.999Z a\\nb 16 c\\r d\\x1b:120 first\\nsecond \\n");
}

TEST(FormatLine, TakesAnyTime)
{
    CLine line = sampleLine();
    line.m_Time = 0;
    EXPECT_TRUE(formatLine(line).starts_with("1970-01-01T00:00:00.000Z "));
    line.m_Time = std::numeric_limits<std::uint64_t>::max();
    EXPECT_TRUE(formatLine(line).ends_with(":120 the text"));
    line.m_Time /= 2;
    EXPECT_TRUE(formatLine(line).ends_with(":120 the text"));
}

TEST(StandardErrorSink, WritesALineToStandardError)
{
    testing::internal::CaptureStderr();
    standardErrorSink()->Write(sampleLine());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), formatLine(sampleLine()) + "\n");
}

TEST(SetSink, LeavesNothingToTheFormerOne)
{
    const CTestModule module(9002);
    const auto first = std::make_shared<CLineSink>();
    const auto second = std::make_shared<CLineSink>();
    const auto trace = [&module](std::string_view text) {
        TLX::Internals::CTraceStreamBuffer(2, module.m_Info, "Unit", "function", 1) << text;
    };
    setSink(first);
    trace("one");
    setSink(second);
    EXPECT_EQ(first.use_count(), 1);
    trace("two");
    setSink(nullptr);
    trace("three");
    EXPECT_THAT(first->m_Texts, testing::ElementsAre("one"));
    EXPECT_THAT(second->m_Texts, testing::ElementsAre("two"));
}

TEST(SetSink, IsSafeWhileThreadsWriteOneAtATime)
{
    constexpr unsigned THREADS = 4;
    constexpr unsigned LINES = 500;
    CTestModule module(9003);
    setMask(9003, 2);
    const auto first = std::make_shared<CLineSink>();
    const auto second = std::make_shared<CLineSink>();
    setSink(first);
    {
        std::vector<std::jthread> threads;
        for (unsigned number = 0; number < THREADS; ++number)
            threads.emplace_back([&module] {
                for (unsigned line = 0; line < LINES; ++line)
                    TEST_TRACE(module.m_Info, 2) << "line %d" << line;
            });
        for (unsigned round = 0; round < 200; ++round) {
            setSink(second);
            setSink(first);
            setMask(9003, 2 | 4);
        }
    }
    setSink(nullptr);
    EXPECT_EQ(first->m_Texts.size() + second->m_Texts.size(), THREADS * LINES);
    EXPECT_FALSE(first->m_Overlapped);
    EXPECT_FALSE(second->m_Overlapped);
}

/** Traces and asks for a text after all other objects of the process are destroyed. */
void useAllAtTheEnd()
{
    const CTestModule late(9004, "Late");
    setMask(9004, 2);
    static_cast<void>(TLX::Language_Support::CLanguageSupport::Find(1));
    TEST_TRACE(late.m_Info, 2) << "the last line";
}

TEST(TraceDeathTest, WorksUntilTheProcessHasEnded)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::atexit(useAllAtTheEnd);
            setSink(standardErrorSink());
            std::exit(0);
        },
        testing::ExitedWithCode(0),
        testing::AllOf(testing::HasSubstr(" Late 2 Tests/TLX "), testing::HasSubstr("useAllAtTheEnd:"),
                       testing::HasSubstr(" the last line")));
}

} // namespace
