#include "Host/Checks.h"

#include <nlohmann/json.hpp>

namespace {

using namespace Host::Cli;
using Host::ExitCode;
using testing::EndsWith;

TEST(DoctorText, HasALineForEachCheck)
{
    const std::vector<Check> checks = {ok("a", "fine"), note("b", "hm\n"),
                                       problem(ExitCode::NoHardware, "c", "bad", "Do it.")};
    EXPECT_EQ(doctorText(checks, {}), "OK       a: fine\nNOTE     b: hm?\nPROBLEM  c: bad -> Do it.\n");
    EXPECT_THAT(doctorText(checks, {20, false}), EndsWith("\nPROBLEM  c: bad ->\n         Do it.\n"));
    EXPECT_EQ(doctorJson(checks), nlohmann::ordered_json::parse(R"({"checks": [
        {"subject": "a", "result": "ok", "message": "fine"},
        {"subject": "b", "result": "note", "message": "hm\n"},
        {"subject": "c", "result": "problem", "message": "bad", "remedy": "Do it."}]})"));
    EXPECT_EQ(exitCodeOf(checks), ExitCode::NoHardware);
    EXPECT_EQ(exitCodeOf({ok("a", "fine"), note("b", "hm")}), ExitCode::Done);
}

} // namespace
