#include "Web/Status.h"

#include <PI/ErrorCode.h>

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

TEST(StatusTest, ARefusalTellsWhetherTheClientIsWrong)
{
    const auto statusOfRefusal = [](std::uint32_t code) {
        const unsigned status = statusOf(Host::Failure(ExitCode::RequestFailed, "No.", {11, code}));
        EXPECT_FALSE(statusText(status).empty());
        return status;
    };
    EXPECT_EQ(statusOfRefusal(PI::ERR_PROPERTY_NOT_SETTABLE), 409U);
    EXPECT_EQ(statusOfRefusal(PI::ERR_OBJECT_NOT_FOUND), 404U);
    for (const std::uint32_t code : {PI::ERR_SUCCESS, PI::ERR_GENERAL_FAILURE, PI::ERR_OUT_OF_MEMORY})
        EXPECT_EQ(statusOfRefusal(code), 500U) << code;
    EXPECT_EQ(statusOf(Host::Failure(ExitCode::NoHardware, "None.", {1, PI::ERR_NO_SUPPORTED_HARDWARE})),
              503U);
    EXPECT_EQ(statusOf(Host::Failure(ExitCode::WrongUsage, "No number.")), 422U);
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
