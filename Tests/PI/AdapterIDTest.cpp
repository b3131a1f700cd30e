#include <PI/AdapterID.h>

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

std::int32_t numberOf(const std::string& host, std::int32_t segment, std::int32_t bus, std::int32_t device,
                      std::int32_t function)
{
    PI::CGlobalAdapterID id(host);
    id.SetSegment(segment);
    id.SetBus(bus);
    id.SetDevice(device);
    id.SetFunction(function);
    id.GenerateUniqueAdapterNumber();
    return id.GetGlobalAdapterNumber();
}

TEST(GlobalAdapterID, HasNoNumberBeforeItIsGenerated)
{
    EXPECT_EQ(PI::CGlobalAdapterID("none").GetGlobalAdapterNumber(), -1);
}

TEST(GlobalAdapterID, CountsFromOneAndGivesTheSameNumberAgain)
{
    EXPECT_EQ(numberOf("count", 0, 3, 0, 0), 1);
    EXPECT_EQ(numberOf("count", 0, 1, 0, 0), 2);
    EXPECT_EQ(numberOf("count", 0, 3, 0, 0), 1);
    EXPECT_EQ(numberOf("count", 0, 1, 0, 0), 2);
    EXPECT_EQ(numberOf("count", 0, 2, 0, 0), 3);
}

TEST(GlobalAdapterID, EveryPartOfTheLocationCounts)
{
    const std::set<std::int32_t> numbers{numberOf("parts", 0, 0, 0, 0), numberOf("parts", 1, 0, 0, 0),
                                         numberOf("parts", 0, 1, 0, 0), numberOf("parts", 0, 0, 1, 0),
                                         numberOf("parts", 0, 0, 0, 1)};
    EXPECT_EQ(numbers, (std::set<std::int32_t>{1, 2, 3, 4, 5}));
}

TEST(GlobalAdapterID, HostsCountApart)
{
    EXPECT_EQ(numberOf("host a", 0, 1, 0, 0), 1);
    EXPECT_EQ(numberOf("host b", 0, 2, 0, 0), 1);
}

TEST(GlobalAdapterID, ThreadsAgreeOnTheNumbers)
{
    constexpr std::int32_t LOCATIONS = 50;
    std::array<std::vector<std::int32_t>, 4> seen;
    std::vector<std::thread> threads;
    threads.reserve(seen.size());
    for (auto& numbers : seen) {
        threads.emplace_back([&numbers] {
            for (std::int32_t bus = 0; bus < LOCATIONS; ++bus) {
                numbers.push_back(numberOf("threads", 0, bus, 0, 0));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    const std::set<std::int32_t> distinct(seen[0].begin(), seen[0].end());
    EXPECT_EQ(distinct.size(), std::size_t{LOCATIONS});
    EXPECT_EQ(*distinct.begin(), 1);
    EXPECT_EQ(*distinct.rbegin(), LOCATIONS);
    for (const auto& numbers : seen) {
        EXPECT_EQ(numbers, seen[0]);
    }
}

} // namespace
