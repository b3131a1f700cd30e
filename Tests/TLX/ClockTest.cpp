#include <TLX/Clock.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <thread>
#include <vector>

namespace {

using namespace TLX::Misc;

class CScriptedClock final : public IClock
{
public:
    std::uint64_t Now() override { return 1'000; }
    std::uint64_t Monotonic() override { return 70; }
    void SleepUntil(std::uint64_t instant) override { m_Instants.push_back(instant); }

    std::vector<std::uint64_t> m_Instants;
};

std::uint64_t systemMilliseconds()
{
    const auto time = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::floor<std::chrono::milliseconds>(time).count());
}

TEST(Clock, NowIsMillisecondsSince1970)
{
    const std::uint64_t before = systemMilliseconds();
    const std::uint64_t time = now();
    EXPECT_LE(before, time);
    EXPECT_LE(time, systemMilliseconds());
}

TEST(Clock, PauseBlocksAtLeastItsDuration)
{
    const std::uint64_t before = monotonic();
    pause(3);
    EXPECT_GE(monotonic(), before + 3);
}

TEST(Clock, AnotherClockServesEveryQuestionWhileItStands)
{
    CScriptedClock clock;
    EXPECT_EQ(setClock(&clock), nullptr);
    EXPECT_EQ(now(), 1'000U);
    EXPECT_EQ(monotonic(), 70U);
    pause(0);
    pause(25);
    EXPECT_EQ(setClock(nullptr), &clock);
    EXPECT_EQ(clock.m_Instants, (std::vector<std::uint64_t>{70, 95}));
    EXPECT_NE(now(), 1'000U);
}

TEST(Clock, PauseBeyondTheEndOfTimeDoesNotWrapAround)
{
    CScriptedClock clock;
    setClock(&clock);
    pause(std::numeric_limits<std::uint64_t>::max());
    setClock(nullptr);
    EXPECT_EQ(clock.m_Instants, (std::vector<std::uint64_t>{std::numeric_limits<std::uint64_t>::max()}));
}

TEST(Clock, IsReplacedWhileOthersAskIt)
{
    CScriptedClock clock;
    const std::jthread asking([start = systemMilliseconds()](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            const std::uint64_t time = now();
            EXPECT_TRUE(time == 1'000 || time >= start) << time;
        }
    });
    for (int round = 0; round < 1'000; ++round) {
        setClock(&clock);
        setClock(nullptr);
    }
}

} // namespace
