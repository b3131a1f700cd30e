#include <PI/ErrorCode.h>

#include <gtest/gtest.h>

namespace {

TEST(ErrorCode, NamesEveryCode)
{
    EXPECT_EQ(PI::errorName(0), "ERR_SUCCESS");
    EXPECT_EQ(PI::errorName(20000), "ERR_GENERAL_FAILURE");
    EXPECT_EQ(PI::errorName(20001), "ERR_NO_SUPPORTED_HARDWARE");
    EXPECT_EQ(PI::errorName(20002), "ERR_UNKNOWN_REQUEST");
    EXPECT_EQ(PI::errorName(20004), "ERR_PROPERTY_NOT_SETTABLE");
    EXPECT_EQ(PI::errorName(20005), "ERR_OPERATION_NOT_SUPPORTED");
    EXPECT_EQ(PI::errorName(20007), "ERR_OUT_OF_MEMORY");
    EXPECT_EQ(PI::errorName(20008), "ERR_OBJECT_NOT_FOUND");
    EXPECT_EQ(PI::errorName(20011), "ERR_LOCK_INITIALIZATION_FAILED");
}

TEST(ErrorCode, UnknownNumbersHaveNoName)
{
    EXPECT_EQ(PI::errorName(1), "ERR_UNKNOWN");
    EXPECT_EQ(PI::errorName(20003), "ERR_UNKNOWN");
    EXPECT_EQ(PI::errorName(0xFFFFFFFFU), "ERR_UNKNOWN");
}

} // namespace
