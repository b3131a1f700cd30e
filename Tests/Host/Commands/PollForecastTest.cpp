#include "Commands/PollForecast.h"

namespace {

using Host::Cli::PollForecast;

TEST(PollForecast, FollowsTheCounterOfPolls)
{
    PollForecast forecast;
    forecast.update(0, 30'000, 500);
    EXPECT_EQ(forecast.next(), 30'500U);
    forecast.update(0, 30'000, 20'000);
    EXPECT_EQ(forecast.next(), 30'500U) << "nothing new";
    forecast.update(1, 2'000, 20'100);
    EXPECT_EQ(forecast.next(), 22'100U);
}

TEST(PollForecast, LooksASecondLaterForAPollThatIsLate)
{
    PollForecast forecast;
    forecast.update(7, 30'000, 0);
    forecast.update(7, 30'000, 30'000);
    EXPECT_EQ(forecast.next(), 31'000U);
    forecast.update(7, 30'000, 31'200);
    EXPECT_EQ(forecast.next(), 32'200U);
    forecast.update(8, 30'000, 32'200);
    EXPECT_EQ(forecast.next(), 62'200U);
}

} // namespace
