#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

TEST(SystemErrorTest, IsSaidPlainly)
{
    EXPECT_EQ(TLXX::statusText(EACCES), "permission denied");
    EXPECT_EQ(TLXX::statusText(EPERM), "permission denied");
    EXPECT_EQ(TLXX::statusText(ENOENT), "there is no such device");
    EXPECT_EQ(TLXX::statusText(ENODEV), "there is no such device");
    EXPECT_EQ(TLXX::statusText(ENXIO), "there is no such device");
    EXPECT_EQ(TLXX::statusText(ENOTTY), "the device takes no NVMe commands");
    EXPECT_EQ(TLXX::statusText(EINTR), "the drive did not answer in time");
    EXPECT_EQ(TLXX::statusText(ETIMEDOUT), "the drive did not answer in time");
    EXPECT_EQ(TLXX::statusText(EAGAIN), "the controller is not ready");
    EXPECT_EQ(TLXX::statusText(EBUSY), "the device is busy");
    EXPECT_EQ(TLXX::statusText(EIO), "input/output error");
}

TEST(SystemErrorTest, OfAnotherKindKeepsItsNumber)
{
    EXPECT_TRUE(TLXX::statusText(EMFILE).starts_with("system error " + std::to_string(EMFILE) + " ("));
}

TEST(SystemErrorTest, KnowsBothRefusals)
{
    EXPECT_TRUE(TLXX::isPermissionStatus(EACCES));
    EXPECT_TRUE(TLXX::isPermissionStatus(EPERM));
}

} // namespace
