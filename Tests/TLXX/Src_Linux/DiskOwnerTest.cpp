#include <TLXX/Linux/DiskOwner.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using TLXX::Linux::CDiskOwner;

TEST(DiskOwner, IsFoundAgainInItsInstance)
{
    for (const CDiskOwner& owner : {CDiskOwner{0, 1, 1}, CDiskOwner{12, 4294967299ULL, 7},
                                    CDiskOwner{UINT32_MAX, UINT64_MAX, UINT32_MAX}}) {
        const auto parsed = CDiskOwner::Parse(owner.Instance());
        ASSERT_TRUE(parsed) << owner.Instance();
        EXPECT_EQ(parsed->m_Instance, owner.m_Instance);
        EXPECT_EQ(parsed->m_Node, owner.m_Node);
        EXPECT_EQ(parsed->m_NamespaceId, owner.m_NamespaceId);
    }
}

TEST(DiskOwner, HasATextWithItsThreeNumbers)
{
    EXPECT_EQ((CDiskOwner{3, 41, 2}.Instance()), "/dev/nvme3 41 2");
}

TEST(DiskOwner, IsNotFoundInOtherTexts)
{
    for (const std::string text : {"",
                                   " ",
                                   "  ",
                                   "/dev/nvme3",
                                   "/dev/nvme3 41",
                                   "/dev/nvme3 41 2 ",
                                   " /dev/nvme3 41 2",
                                   "/dev/nvme3 41 2 5",
                                   "/dev/nvme3  2",
                                   "/dev/nvme3 041 2",
                                   "/dev/nvme3 41 02",
                                   "/dev/nvme03 41 2",
                                   "/dev/nvme3n1 41 2",
                                   "/dev/sda 41 2",
                                   "nvme3 41 2",
                                   "/dev/nvme3 -41 2",
                                   "/dev/nvme3 +41 2",
                                   "/dev/nvme3 41 4294967296",
                                   "/dev/nvme4294967296 41 2",
                                   "/dev/nvme3 18446744073709551616 2",
                                   "/dev/nvme3\t41\t2",
                                   "/tmp/nvme3 41 2"})
        EXPECT_FALSE(CDiskOwner::Parse(text)) << text;
}

} // namespace
