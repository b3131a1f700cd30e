#include "Web/Status.h"

#include <gtest/gtest.h>

namespace {

using namespace Host::Web;
using Host::ExitCode;

TEST(StatusTest, FailuresKeepTheirKind)
{
    for (const ExitCode code :
         {ExitCode::WrongUsage, ExitCode::NoPermission, ExitCode::NoSuchObject, ExitCode::RequestFailed}) {
        EXPECT_EQ(exitCodeOf(statusOf(code)), code);
        EXPECT_FALSE(statusText(statusOf(code)).empty());
    }
    EXPECT_EQ(statusOf(ExitCode::NoHardware), 503U);
    EXPECT_EQ(statusOf(ExitCode::Done), 500U);
}

TEST(StatusTest, OtherCodesTellWhatThePersonCanDo)
{
    EXPECT_EQ(exitCodeOf(400), ExitCode::WrongUsage);
    EXPECT_EQ(exitCodeOf(401), ExitCode::NoPermission);
    EXPECT_EQ(exitCodeOf(503), ExitCode::RequestFailed);
    EXPECT_EQ(exitCodeOf(418), ExitCode::RequestFailed);
    EXPECT_EQ(statusText(418), "");
}

} // namespace
