#include "LineCapture.h"

#include <TLX/Clock.h>
#include <TLX/TraceStreamBuffer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <locale>
#include <string>
#include <string_view>

namespace {

using TLX::Internals::CTraceStreamBuffer;
using namespace std::string_literals;
using namespace std::string_view_literals;

class TraceStreamBuffer : public testing::Test
{
protected:
    /** The text of the line made from a format and arguments. */
    template<typename... Arguments>
    std::string Text(const Arguments&... arguments)
    {
        (CTraceStreamBuffer(2, m_Module.m_Info, "Unit", "function", 7) << ... << arguments);
        return m_Capture->m_Texts.back();
    }

    CTestModule m_Module{9001};
    CLineCapture m_Capture;
};

TEST_F(TraceStreamBuffer, FillsTextsAndNumbersIntoTheFormat)
{
    EXPECT_EQ(Text("LEAVE Worker()"), "LEAVE Worker()");
    EXPECT_EQ(Text("deviceName: %s, driver: %s", "/dev/nvme0n1", "nvme"s),
              "deviceName: /dev/nvme0n1, driver: nvme");
    EXPECT_EQ(Text("LEAVE Initialize() -> %d", 20001), "LEAVE Initialize() -> 20001");
    EXPECT_EQ(Text("adapter count is %lu", 3UL), "adapter count is 3");
    EXPECT_EQ(Text("object=0x%x", 0x1390001U), "object=0x1390001");
    EXPECT_EQ(Text("Update () %x -> %x", 0x0, 0x2F), "Update () 0 -> 2f");
    EXPECT_EQ(Text("%5d|%-5s|%04x|100%%", 42, "ab", 255), "   42|ab   |00ff|100%");
    EXPECT_EQ(Text("%s and %d", 7, "text"), "7 and text");
    EXPECT_EQ(Text("%d %d", true, std::int8_t{-5}), "1 -5");
}

TEST_F(TraceStreamBuffer, TakesNumbersOfAllWidthsWhole)
{
    EXPECT_EQ(Text("%d", std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(Text("%d", std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(Text("%lu", std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(Text("0x%x", std::numeric_limits<std::uint64_t>::max()), "0xffffffffffffffff");
}

TEST_F(TraceStreamBuffer, EscapesControlCharactersOfArguments)
{
    EXPECT_EQ(Text("<%s>", "a\nb\rc\td"), "<a\\nb\\rc\\td>");
    EXPECT_EQ(Text("<%s>", "\x1b[2J\x01\x7f"), "<\\x1b[2J\\x01\\x7f>");
    EXPECT_EQ(Text("<%s>", "\0x"sv), "<\\x00x>");
    EXPECT_EQ(Text("<%s>", "C:\\n %d"), "<C:\\n %d>");
}

TEST_F(TraceStreamBuffer, KeepsUtf8AndEscapesOtherBytes)
{
    EXPECT_EQ(Text("<%s>", "25 °C \u20ac \U0001F600"), "<25 °C \u20ac \U0001F600>");
    EXPECT_EQ(Text("<%s>", "\xff\xfe"), "<\\xff\\xfe>");
    EXPECT_EQ(Text("<%s>", "\xc3"), "<\\xc3>");
    EXPECT_EQ(Text("<%s>", "\xc0\x80"), "<\\xc0\\x80>") << "an overlong form";
    EXPECT_EQ(Text("<%s>", "\xed\xa0\x80"), "<\\xed\\xa0\\x80>") << "a surrogate";
    EXPECT_EQ(Text("<%s>", "\xc2\x9b"), "<\\xc2\\x9b>") << "a control character beyond ASCII";
    EXPECT_EQ(Text("<%s>", "\xe2\x82\n"), "<\\xe2\\x82\\n>") << "a sequence cut short";
}

TEST_F(TraceStreamBuffer, WritesAFormatThatDoesNotFitAsItStandsWithItsArguments)
{
    EXPECT_EQ(Text("no directive", 1, "two"), "no directive 1 two");
    EXPECT_EQ(Text("%d and %d", 1), "%d and %d 1");
    EXPECT_EQ(Text("%s", "a", "b\n", ~0ULL), "%s a b\\n 18446744073709551615");
    EXPECT_EQ(Text("%d"), "%d");
    EXPECT_EQ(Text("100%"), "100%");
    EXPECT_EQ(Text("", 5), " 5");
}

TEST_F(TraceStreamBuffer, ANumberBeforeTheFormatIsAnArgument)
{
    EXPECT_EQ(Text(5, "value %d"), "value 5");
    EXPECT_EQ(Text(5), " 5");
}

TEST_F(TraceStreamBuffer, SurvivesEveryBrokenDirective)
{
    static constexpr std::string_view FORMATS[] = {"%",   "%5",  "%-",  "%.",      "%l",   "%|", "%|1",
                                                   "%1$", "%1%", "%0%", "%*d",     "%n",   "%q", "%{",
                                                   "%%%", "% ",  "%(",  "%1$*2$d", "%\xff"};
    for (const std::string_view format : FORMATS)
        Text(format, 1, "text");
    EXPECT_EQ(m_Capture->m_Texts.size(), std::size(FORMATS));
}

TEST_F(TraceStreamBuffer, IsNotChangedByTheHostsLocale)
{
    struct CGrouping : std::numpunct<char>
    {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new CGrouping));
    EXPECT_EQ(Text("%d", 1234567), "1234567");
    std::locale::global(former);
}

TEST_F(TraceStreamBuffer, HandsOverAllItWasMadeFrom)
{
    class CFixedClock final : public TLX::Misc::IClock
    {
        std::uint64_t Now() override { return 1'767'225'600'007ULL; }
        std::uint64_t Monotonic() override { return 0; }
        void SleepUntil(std::uint64_t) override {}
    } clock;
    TLX::Misc::setClock(&clock);
    Text("text %d", 1);
    TLX::Misc::setClock(nullptr);
    EXPECT_EQ(m_Capture->m_Last, "2026-01-01T00:00:00.007Z Module 2 Unit function:7 text 1");
}

TEST_F(TraceStreamBuffer, IsWrittenWhenItIsDestroyed)
{
    {
        CTraceStreamBuffer line(2, m_Module.m_Info, "Unit", "function", 7);
        line << "text %s" << std::string("temporary");
        EXPECT_THAT(m_Capture->m_Texts, testing::IsEmpty());
    }
    EXPECT_THAT(m_Capture->m_Texts, testing::ElementsAre("text temporary"));
}

TEST_F(TraceStreamBuffer, GoesNowhereWithoutASink)
{
    TLX::Trace::setSink(nullptr);
    CTraceStreamBuffer(2, m_Module.m_Info, "Unit", "function", 7) << "text";
    EXPECT_THAT(m_Capture->m_Texts, testing::IsEmpty());
}

TEST_F(TraceStreamBuffer, ADisabledLevelEvaluatesNoArgument)
{
    int evaluations = 0;
    const auto argument = [&evaluations] { return ++evaluations; };
    TLX::Trace::setMask(9001, 8 | 16);
    TEST_TRACE(m_Module.m_Info, 2) << "off %d" << argument();
    EXPECT_EQ(evaluations, 0);
    TEST_TRACE(m_Module.m_Info, 16) << "on %d" << argument();
    EXPECT_EQ(evaluations, 1);
    EXPECT_THAT(m_Capture->m_Texts, testing::ElementsAre("on 1"));
}

} // namespace
