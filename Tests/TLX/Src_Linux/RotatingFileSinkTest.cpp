#include "Support/TemporaryFolder.h"

#include <TLX/Linux/Descriptor.h>
#include <TLX/TraceSink.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

class RotatingFileSinkPipe : public testing::Test
{
protected:
    RotatingFileSinkPipe() { EXPECT_EQ(mkfifo(m_File.c_str(), 0600), 0); }

    /** What has been written so far, up to `size` bytes. */
    static std::string readFrom(int reader, std::size_t size)
    {
        std::string text(size, '\0');
        const ssize_t count = read(reader, text.data(), size);
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }

    TestSupport::CTemporaryFolder m_Folder;
    fs::path m_File = m_Folder.Path() / "trace.log";
};

TEST_F(RotatingFileSinkPipe, IsRefusedWhileNobodyReadsIt)
{
    try {
        rotatingFileSink(m_File);
        FAIL() << "opened a pipe that nobody reads";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_device_or_address);
    }
}

TEST_F(RotatingFileSinkPipe, GetsLinesAndIsNeverRenamed)
{
    const TLX::Linux::CDescriptor reader(open(m_File.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_TRUE(reader.Valid());
    const auto sink = rotatingFileSink(m_File, formatLine(line("1")).size() + 1);
    sink->Write(line("1"));
    sink->Write(line("2"));
    EXPECT_EQ(readFrom(reader.Get(), 1000), formatLine(line("1")) + "\n" + formatLine(line("2")) + "\n");
    EXPECT_FALSE(fs::exists(m_File.string() + ".1"));
}

TEST_F(RotatingFileSinkPipe, LosesLinesRatherThanWait)
{
    constexpr int smallest = 4096;
    const TLX::Linux::CDescriptor reader(open(m_File.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_TRUE(reader.Valid());
    ASSERT_GE(fcntl(reader.Get(), F_SETPIPE_SZ, smallest), 0);
    const auto sink = rotatingFileSink(m_File);
    const std::string stored = formatLine(line("x")) + "\n";
    for (int i = 0; i < smallest; ++i)
        sink->Write(line("x"));
    const std::string first = readFrom(reader.Get(), 2 * smallest);
    EXPECT_EQ(first.substr(0, stored.size()), stored);
    EXPECT_EQ(first.size() % stored.size(), 0U) << "no line is torn";
    sink->Write(line("later"));
    EXPECT_EQ(readFrom(reader.Get(), smallest), formatLine(line("later")) + "\n");
}

} // namespace
