#include "Support/TemporaryFolder.h"

#include <TLX/RegularFile.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using TLX::Misc::isSpecialFile;
using TLX::Misc::readRegularFile;

TEST(RegularFile, IsNoPipeAndNoDevice)
{
    const TestSupport::CTemporaryFolder folder;
    const std::filesystem::path pipe = folder.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_symlink(pipe, folder.Path() / "link");
    for (const std::filesystem::path& file :
         {pipe, folder.Path() / "link", std::filesystem::path("/dev/null")}) {
        EXPECT_EQ(readRegularFile(file), std::nullopt) << file;
        EXPECT_TRUE(isSpecialFile(file)) << file;
    }
}

TEST(RegularFile, MayBeBehindALink)
{
    const TestSupport::CTemporaryFolder folder;
    std::filesystem::create_symlink(folder.Write("file", "text"), folder.Path() / "link");
    EXPECT_EQ(readRegularFile(folder.Path() / "link"), "text");
    EXPECT_FALSE(isSpecialFile(folder.Path() / "link"));
}

} // namespace
