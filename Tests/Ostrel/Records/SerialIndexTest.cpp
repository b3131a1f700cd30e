#include "Records/SerialIndex.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct CRecord
{
    std::string m_SerialNumber;
};

using NAMESPACE_Ostrel::CSerialIndex;

} // namespace

TEST(SerialIndex, FindsTheFirstOfEqualSerialNumbers)
{
    std::vector<CRecord> records = {{"A"}, {"B"}, {"A"}, {""}, {"B"}};
    const CSerialIndex<CRecord> index(records);
    EXPECT_EQ(index.Find("A"), &records[0]);
    EXPECT_EQ(index.Find("B"), &records[1]);
    EXPECT_EQ(index.Find(""), &records[3]);
}

TEST(SerialIndex, FindsNothingThatIsNotThere)
{
    const std::vector<CRecord> records = {{"AB"}};
    const CSerialIndex<const CRecord> index(records);
    EXPECT_EQ(index.Find("A"), nullptr);
    EXPECT_EQ(index.Find("ab"), nullptr);
    EXPECT_EQ(index.Find(""), nullptr);
    const std::vector<CRecord> none;
    EXPECT_EQ(CSerialIndex<const CRecord>(none).Find(""), nullptr);
}
