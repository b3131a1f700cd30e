#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

TEST(NvmeStatusTest, SaysSystemErrorsPlainly)
{
    EXPECT_EQ(TLXX::statusText(0), "success");
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

TEST(NvmeStatusTest, NamesTheNumberOfOtherSystemErrors)
{
    EXPECT_TRUE(TLXX::statusText(EMFILE).starts_with("system error " + std::to_string(EMFILE) + " ("));
    EXPECT_TRUE(TLXX::statusText(0xFFFF).starts_with("system error 65535 ("));
}

TEST(NvmeStatusTest, SaysWhatTheDriveAnswered)
{
    EXPECT_EQ(TLXX::statusText(0x12020), "the drive answered with status 0x2020");
    EXPECT_EQ(TLXX::statusText(0x10002), "the drive answered with status 0x2 (invalid field in the command)");
    EXPECT_EQ(TLXX::statusText(0x14109),
              "the drive answered with status 0x4109 (the log page is not supported)");
    EXPECT_EQ(TLXX::statusText(0x1FFFF), "the drive answered with status 0xFFFF");
}

TEST(NvmeStatusTest, SaysTheRest)
{
    EXPECT_EQ(TLXX::statusText(0x20000), "the drive sent less data than was asked for");
    EXPECT_EQ(TLXX::statusText(0x20001), "the driver's answer makes no sense");
    EXPECT_EQ(TLXX::statusText(0x20002), "unknown status 0x20002");
    EXPECT_EQ(TLXX::statusText(0xFFFFFFFF), "unknown status 0xFFFFFFFF");
}

TEST(NvmeStatusTest, OnlySystemRefusalsAreAboutPermission)
{
    EXPECT_TRUE(TLXX::isPermissionStatus(EACCES));
    EXPECT_TRUE(TLXX::isPermissionStatus(EPERM));
    for (const std::uint32_t status : {0U, unsigned{ENODEV}, unsigned{EIO}, 0x10000U + EACCES,
                                       0x10000U + EPERM, 0x20000U, 0x20000U + EACCES})
        EXPECT_FALSE(TLXX::isPermissionStatus(status)) << status;
}

} // namespace
