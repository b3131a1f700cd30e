#include <PI/PollInterval.h>

#include <gtest/gtest.h>

#include <utility>

namespace {

TEST(PollInterval, IsTheNearestPossibleOneOrTheUsualOne)
{
    for (const auto& [text, seconds] : {std::pair("2", 2U),
                                        {"255", 255U},
                                        {" 45", 45U},
                                        {"+45", 45U},
                                        {"0045", 45U},
                                        {"1", 2U},
                                        {"256", 255U},
                                        {"-5", 255U},
                                        {"4294967295", 255U},
                                        {"4294967296", 30U},
                                        {"45 ", 30U},
                                        {"45s", 30U},
                                        {"1.5", 30U},
                                        {"", 30U}})
        EXPECT_EQ(PI::pollIntervalOf(text), seconds) << text;
}

TEST(PollInterval, ANumberIsNotTakenToABound)
{
    EXPECT_EQ(PI::settingNumber("256"), 256U);
    EXPECT_EQ(PI::settingNumber("x"), std::nullopt);
}

} // namespace
