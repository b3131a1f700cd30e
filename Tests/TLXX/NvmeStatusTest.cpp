#include "Support/SystemStatus.h"

#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace TestSupport::SystemStatus;

TEST(NvmeStatusTest, NamesTheNumberOfOtherSystemErrors)
{
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
    EXPECT_EQ(TLXX::statusText(0x20002), "the page holds zeros alone");
    EXPECT_EQ(TLXX::statusText(TLXX::STATUS_NO_ANSWER), "the drive did not answer in time");
    EXPECT_EQ(TLXX::statusText(TLXX::STATUS_NO_DEVICE), "there is no such device");
    EXPECT_EQ(TLXX::statusText(TLXX::STATUS_NO_RESOURCES), "descriptors, threads or memory ran out");
    EXPECT_EQ(TLXX::statusText(0x20006), "unknown status 0x20006");
    EXPECT_EQ(TLXX::statusText(0xFFFFFFFF), "unknown status 0xFFFFFFFF");
}

TEST(NvmeStatusTest, OnlySystemRefusalsAreAboutPermission)
{
    EXPECT_TRUE(TLXX::isPermissionStatus(NO_PERMISSION));
    for (const std::uint32_t status :
         {0U, NO_SUCH_FILE, IO_ERROR, 0x10000U + NO_PERMISSION, 0x20000U, 0x20000U + NO_PERMISSION})
        EXPECT_FALSE(TLXX::isPermissionStatus(status)) << status;
}

} // namespace
