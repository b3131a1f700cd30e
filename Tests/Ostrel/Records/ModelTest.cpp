#include "Records/Model.h"

#include <gtest/gtest.h>

#include <stdexcept>

using NAMESPACE_Ostrel::IsKnownModelFamily;
using NAMESPACE_Ostrel::modelText;
using NAMESPACE_Ostrel::rowModelText;

namespace {

TEST(Model, CutsTheMakerAndItsSeparator)
{
    EXPECT_EQ(modelText("INTEL", "INTEL SSDPF2KX"), "SSDPF2KX");
    EXPECT_EQ(modelText("INTEL", "INTEL-SSDPF2KX"), "SSDPF2KX");
    EXPECT_EQ(modelText("SAMSUNG", "SAMSUNG MZPLL1T6"), "MZPLL1T6");
}

TEST(Model, CutsNoSeparatorAfterTheMicronPrefix)
{
    EXPECT_EQ(modelText("MICRON", "MICRON_7450_ABC"), "ABC");
    EXPECT_EQ(modelText("MICRON", "MICRON_7450_ ABC"), " ABC");
    EXPECT_EQ(modelText("MICRON", "MICRON_7450_"), "");
}

TEST(Model, StaysWholeWithoutThePrefix)
{
    EXPECT_EQ(modelText("INTEL", "SSDPF2KX"), "SSDPF2KX");
    EXPECT_EQ(modelText("INTEL", "Intel SSDPF2KX"), "Intel SSDPF2KX");
    EXPECT_EQ(modelText("SAMSUNG", "Samsung SSD 990"), "Samsung SSD 990");
    EXPECT_EQ(modelText("MICRON", "MICRON_7400_ABC"), "MICRON_7400_ABC");
    EXPECT_EQ(modelText("INTEL", ""), "");
}

TEST(Model, StaysWholeForAnotherMaker)
{
    EXPECT_EQ(modelText("KIOXIA", "KIOXIA KCD8XRUG960G"), "KIOXIA KCD8XRUG960G");
    EXPECT_EQ(modelText("", "INTEL SSDPF2KX"), "INTEL SSDPF2KX");
    EXPECT_EQ(modelText("SAMSUNG", "INTEL SSDPF2KX"), "INTEL SSDPF2KX");
    EXPECT_EQ(modelText("intel", "INTEL SSDPF2KX"), "INTEL SSDPF2KX");
}

TEST(Model, ThrowsForAModelThatIsTheMakerAlone)
{
    EXPECT_THROW(modelText("INTEL", "INTEL"), std::out_of_range);
    EXPECT_THROW(modelText("SAMSUNG", "SAMSUNG"), std::out_of_range);
    EXPECT_EQ(modelText("INTEL", "INTEL "), "");
    EXPECT_EQ(modelText("SAMSUNG", "SAMSUNG "), "");
}

TEST(Model, IsCutInRowsWhoeverTheMakerIs)
{
    EXPECT_EQ(rowModelText("INTEL SSDPF2KX"), "SSDPF2KX");
    EXPECT_EQ(rowModelText("SAMSUNG MZPLL1T6"), "MZPLL1T6");
    EXPECT_EQ(rowModelText("MICRON_7450_ABC"), "ABC");
    EXPECT_EQ(rowModelText("MICRON_7400_ABC"), "MICRON_7400_ABC");
    EXPECT_EQ(rowModelText("Samsung SSD 990"), "Samsung SSD 990");
    EXPECT_EQ(rowModelText("KIOXIA KCD8"), "KIOXIA KCD8");
    EXPECT_EQ(rowModelText("my INTEL"), "my INTEL");
    EXPECT_EQ(rowModelText(""), "");
}

TEST(Model, InRowsMayBeTheMakerAlone)
{
    EXPECT_EQ(rowModelText("INTEL"), "");
    EXPECT_EQ(rowModelText("INTEL "), "");
    EXPECT_EQ(rowModelText("SAMSUNG"), "");
    EXPECT_EQ(rowModelText("MICRON_7450_"), "");
}

TEST(Model, KnowsTwoFamilies)
{
    EXPECT_TRUE(IsKnownModelFamily("INTEL SSDPED"));
    EXPECT_TRUE(IsKnownModelFamily("INTEL SSDPED1K375GA"));
    EXPECT_TRUE(IsKnownModelFamily("SAMSUNG MZP"));
    EXPECT_TRUE(IsKnownModelFamily("SAMSUNG MZPLL1T6"));
    EXPECT_FALSE(IsKnownModelFamily("INTEL SSDPE"));
    EXPECT_FALSE(IsKnownModelFamily("INTEL SSDPF2KX"));
    EXPECT_FALSE(IsKnownModelFamily("SAMSUNG MZQL2960"));
    EXPECT_FALSE(IsKnownModelFamily("Intel SSDPED1K375GA"));
    EXPECT_FALSE(IsKnownModelFamily(" INTEL SSDPED1K"));
    EXPECT_FALSE(IsKnownModelFamily(""));
}

} // namespace
