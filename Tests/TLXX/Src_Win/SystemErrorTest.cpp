#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <windows.h>

namespace {

TEST(SystemErrorTest, IsSaidPlainly)
{
    EXPECT_EQ(TLXX::statusText(ERROR_ACCESS_DENIED), "permission denied");
    EXPECT_EQ(TLXX::statusText(ERROR_FILE_NOT_FOUND), "there is no such device");
    EXPECT_EQ(TLXX::statusText(ERROR_PATH_NOT_FOUND), "there is no such device");
    EXPECT_EQ(TLXX::statusText(ERROR_NOT_SUPPORTED), "the device takes no NVMe commands");
    EXPECT_EQ(TLXX::statusText(ERROR_SHARING_VIOLATION), "the device is busy");
    EXPECT_EQ(TLXX::statusText(ERROR_IO_DEVICE), "input/output error");
}

TEST(SystemErrorTest, OfAnotherKindKeepsItsNumber)
{
    EXPECT_TRUE(TLXX::statusText(ERROR_NOT_READY).starts_with("system error 21 ("));
}

} // namespace
