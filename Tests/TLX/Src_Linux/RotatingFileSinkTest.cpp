#include "Support/TemporaryFolder.h"

#include <TLX/TraceSink.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace TLX::Trace;
namespace fs = std::filesystem;

CLine line(std::string_view text)
{
    return {0, 1, "M", 2, "U", "f", 3, text};
}

// Elsewhere a folder with an open file cannot be removed.
TEST(RotatingFileSinkFolder, MayGoAndComeBack)
{
    const TestSupport::CTemporaryFolder folder;
    const auto sink = rotatingFileSink(folder.Path() / "trace.log", formatLine(line("1")).size() + 1);
    sink->Write(line("1"));
    fs::remove_all(folder.Path());
    sink->Write(line("2"));
    fs::create_directory(folder.Path());
    sink->Write(line("3"));
    EXPECT_EQ(folder.Read("trace.log"), formatLine(line("3")) + "\n");
}

} // namespace
