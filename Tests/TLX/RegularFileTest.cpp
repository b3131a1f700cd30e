#include "Support/TemporaryFolder.h"

#include <TLX/RegularFile.h>

#include <gtest/gtest.h>

namespace {

using TLX::Misc::isSpecialFile;
using TLX::Misc::readRegularFile;

TEST(RegularFile, GivesAllItsBytesUpToTheLargestSize)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string content = std::string(40'000, 'x') + std::string("\r\n\0y", 4);
    const std::filesystem::path file = folder.Write("file", content);
    EXPECT_EQ(readRegularFile(file), content);
    EXPECT_EQ(readRegularFile(file, content.size()), content);
    EXPECT_EQ(readRegularFile(file, content.size() - 1), std::nullopt);
    EXPECT_EQ(readRegularFile(folder.Write("empty", "")), "");
    EXPECT_FALSE(isSpecialFile(file));
}

TEST(RegularFile, IsNeitherAFolderNorMissing)
{
    const TestSupport::CTemporaryFolder folder;
    EXPECT_EQ(readRegularFile(folder.Path()), std::nullopt);
    EXPECT_TRUE(isSpecialFile(folder.Path()));
    EXPECT_EQ(readRegularFile(folder.Path() / "missing"), std::nullopt);
    EXPECT_FALSE(isSpecialFile(folder.Path() / "missing"));
}

} // namespace
