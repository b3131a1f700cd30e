#include "Support/SourceTree.h"
#include "Support/TemporaryFolder.h"

#include <PI/LifeTimeData.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using testing::HasSubstr;
using Table = std::vector<PI::CNVMeLifeTimeData>;

Table read(std::string_view content)
{
    const TestSupport::CTemporaryFolder folder;
    return PI::readLifeTimeData(folder.Write("Endurance.txt", content));
}

std::string refusal(std::string_view content)
{
    try {
        read(content);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing was thrown";
}

/** The rating that the first matching row gives a model, 1 when none matches. */
std::uint64_t ratingOf(const Table& table, const std::string& model)
{
    const PI::CNVMeLifeTimeData* row = PI::findLifeTimeData(table, model);
    return row == nullptr ? 1 : row->m_Endurance;
}

TEST(LifeTimeData, ReadsRows)
{
    const auto table = read("# comment\n\n  Drive X 1TB |\t1380 \r\n\t# another\nY|3");
    ASSERT_EQ(table.size(), 2U);
    EXPECT_EQ(table[0].m_Model, "Drive X 1TB");
    EXPECT_EQ(table[0].m_Characters, 11U);
    EXPECT_EQ(table[0].m_Endurance, 1255U);
    EXPECT_EQ(table[1].m_Model, "Y");
    EXPECT_EQ(table[1].m_Characters, 1U);
    EXPECT_EQ(table[1].m_Endurance, 2U);
}

TEST(LifeTimeData, HandsOutWholeTebibytes)
{
    EXPECT_EQ(read("a|1000").at(0).m_Endurance, 909U);
    EXPECT_EQ(read("a|7008").at(0).m_Endurance, 6373U);
    // 2^28 TB are exactly 5^12 TiB; one terabyte less gives less.
    EXPECT_EQ(read("a|268435456").at(0).m_Endurance, 244140625U);
    EXPECT_EQ(read("a|268435455").at(0).m_Endurance, 244140624U);
    EXPECT_EQ(read("a|18446744073709551615").at(0).m_Endurance, 16777215999999999999U);
}

TEST(LifeTimeData, AnEmptyFileIsAnEmptyTable)
{
    EXPECT_TRUE(read("").empty());
    EXPECT_TRUE(read("# nothing\n").empty());
}

TEST(LifeTimeData, RefusesRatingsThatAreNone)
{
    EXPECT_THAT(refusal("a|5\nb|0\n"), HasSubstr("Endurance.txt:2: "));
    EXPECT_THAT(refusal("b|2"), HasSubstr("Endurance.txt:1: "));
    for (const auto* row :
         {"a|", "a|x", "a|5x", "a|-5", "a|1.5", "a|5 6", "a|18446744073709551616", "a|5|6"}) {
        EXPECT_THAT(refusal(row), HasSubstr("whole number")) << row;
    }
}

TEST(LifeTimeData, RefusesLinesOfAnotherShape)
{
    EXPECT_THAT(refusal("# one\n\nmodel 5\n"), HasSubstr("Endurance.txt:3: "));
    EXPECT_THAT(refusal("|5"), HasSubstr("no model text"));
    EXPECT_THAT(refusal("  |5"), HasSubstr("no model text"));
}

TEST(LifeTimeData, RefusesARowBehindAShorterTextThatItContains)
{
    EXPECT_THAT(refusal("Drive|100\nBig Drive 2|200\n"), HasSubstr("Endurance.txt:2: "));
    EXPECT_THAT(refusal("Drive|100\nDrive|200\n"), HasSubstr("Endurance.txt:2: "));
    EXPECT_EQ(read("Big Drive 2|200\nDrive|100\ndrive 5|100").size(), 3U);
}

TEST(LifeTimeData, RefusesAFileThatCannotBeRead)
{
    const TestSupport::CTemporaryFolder folder;
    EXPECT_THROW(PI::readLifeTimeData(folder.Path() / "Missing.txt"), std::runtime_error);
    EXPECT_THROW(PI::readLifeTimeData(folder.Path()), std::runtime_error);
}

TEST(LifeTimeData, IsReadOnceForAFolder)
{
    const TestSupport::CTemporaryFolder folder;
    folder.Write("Endurance.txt", "a|100\n");
    PI::SetLifeTimeFolder(folder.Path());
    const auto& first = PI::GetLifeTimeDataNVMe();
    ASSERT_EQ(first.size(), 1U);
    folder.Write("Endurance.txt", "a|100\nb|100\n");
    EXPECT_EQ(&PI::GetLifeTimeDataNVMe(), &first);
    EXPECT_EQ(first.size(), 1U);
    PI::SetLifeTimeFolder(folder.Path());
    EXPECT_EQ(PI::GetLifeTimeDataNVMe().size(), 2U);
    EXPECT_EQ(first.at(0).m_Model, "a");
}

TEST(LifeTimeData, AMissingOrDamagedFileIsAnEmptyTable)
{
    const TestSupport::CTemporaryFolder folder;
    PI::SetLifeTimeFolder(folder.Path());
    EXPECT_TRUE(PI::GetLifeTimeDataNVMe().empty());
    folder.Write("Endurance.txt", "a|100\nb|0\n");
    EXPECT_TRUE(PI::GetLifeTimeDataNVMe().empty());
}

TEST(LifeTimeData, AFileThatCouldNotBeReadIsTriedAgain)
{
    const TestSupport::CTemporaryFolder folder;
    PI::SetLifeTimeFolder(folder.Path());
    const auto& missing = PI::GetLifeTimeDataNVMe();
    EXPECT_EQ(&PI::GetLifeTimeDataNVMe(), &missing);
    folder.Write("Endurance.txt", "a|100\n");
    EXPECT_EQ(PI::GetLifeTimeDataNVMe().size(), 1U);
    EXPECT_TRUE(missing.empty()) << "it was handed out for good";
}

TEST(LifeTimeData, ThreadsShareOneTable)
{
    const TestSupport::CTemporaryFolder folder;
    folder.Write("Endurance.txt", "a|100\n");
    PI::SetLifeTimeFolder(folder.Path());
    std::array<const Table*, 4> seen{};
    std::vector<std::thread> threads;
    threads.reserve(seen.size());
    for (auto& table : seen) {
        threads.emplace_back([&table] { table = &PI::GetLifeTimeDataNVMe(); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (const auto* table : seen) {
        ASSERT_EQ(table, seen[0]);
    }
    EXPECT_EQ(seen[0]->size(), 1U);
}

TEST(ShippedEndurance, RatesDrivesOfEveryMaker)
{
    const auto table = PI::readLifeTimeData(TestSupport::sourceTree("Libraries/PI/Data/Endurance.txt"));
    EXPECT_GE(table.size(), 40U);
    EXPECT_EQ(ratingOf(table, "INTEL SSDPE2KX010T8"), 1746U);
    EXPECT_EQ(ratingOf(table, "INTEL SSDPED1K375GA"), 18644U);
    EXPECT_EQ(ratingOf(table, "Samsung SSD 970 EVO Plus 1TB"), 545U);
    EXPECT_EQ(ratingOf(table, "SAMSUNG MZQL21T9HCJR-00A07"), 3186U);
    EXPECT_EQ(ratingOf(table, "KCD6XLUL3T84"), 6373U);
    EXPECT_EQ(ratingOf(table, "KIOXIA KCM61VUL3T20"), 15934U);
    EXPECT_EQ(ratingOf(table, "Micron_9300_MTFDHAL3T8TDP"), 7639U);
    EXPECT_EQ(ratingOf(table, "MICRON_7450_MTFDKCC960TFR"), 1593U);
    EXPECT_EQ(ratingOf(table, "QEMU NVMe Ctrl"), 1U);
}

TEST(ShippedEndurance, LongerTextsStandBeforeShorterOnesThatTheyContain)
{
    const auto table = PI::readLifeTimeData(TestSupport::sourceTree("Libraries/PI/Data/Endurance.txt"));
    for (std::size_t later = 0; later < table.size(); ++later) {
        EXPECT_EQ(table[later].m_Characters, table[later].m_Model.size());
        for (std::size_t earlier = 0; earlier < later; ++earlier) {
            EXPECT_EQ(table[later].m_Model.find(table[earlier].m_Model), std::string::npos)
                << table[later].m_Model << " behind " << table[earlier].m_Model;
        }
    }
}

} // namespace
