#include "Support/TemporaryFolder.h"

#include <TLX/TrustedFile.h>

#include <gtest/gtest.h>

#include <optional>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using TLX::Misc::readTrustedFile;
using TLX::Misc::trustedTarget;

constexpr uid_t SOMEBODY = 4242;

class TrustedFile : public testing::Test
{
protected:
    /** A link in the folder that belongs to `owner`. */
    std::filesystem::path Link(const char* name, const std::filesystem::path& target,
                               uid_t owner = geteuid()) const
    {
        const std::filesystem::path link = m_Folder.Path() / name;
        std::filesystem::create_symlink(target, link);
        EXPECT_EQ(lchown(link.c_str(), owner, static_cast<gid_t>(-1)), 0);
        return link;
    }

    TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_File = m_Folder.Write("file", "content");
};

/** Only the superuser can give a link to another user. */
#define REQUIRE_SUPERUSER                                                                                    \
    if (geteuid() != 0)                                                                                      \
    GTEST_SKIP() << "needs the superuser"

} // namespace

TEST_F(TrustedFile, FilesAndWhatIsNotThereAreTheirOwnTargets)
{
    EXPECT_EQ(trustedTarget(m_File), m_File);
    EXPECT_EQ(trustedTarget(m_Folder.Path() / "missing"), m_Folder.Path() / "missing");
    EXPECT_EQ(readTrustedFile(m_File), "content");
    EXPECT_EQ(readTrustedFile(m_Folder.Path() / "missing"), std::nullopt);
}

TEST_F(TrustedFile, OwnLinksAreFollowedToTheEnd)
{
    const auto first = Link("first", "file");
    const auto second = Link("second", first);
    EXPECT_EQ(trustedTarget(second), m_File);
    EXPECT_EQ(readTrustedFile(second), "content");
    EXPECT_EQ(trustedTarget(Link("open", "missing")), m_Folder.Path() / "missing");
}

TEST_F(TrustedFile, CirclesLeadNowhere)
{
    EXPECT_EQ(trustedTarget(Link("circle", "circle")), std::nullopt);
}

TEST_F(TrustedFile, OthersLinksAreNotFollowed)
{
    REQUIRE_SUPERUSER;
    const auto theirs = Link("theirs", "file", SOMEBODY);
    EXPECT_EQ(trustedTarget(theirs), std::nullopt);
    EXPECT_EQ(readTrustedFile(theirs), std::nullopt);
    EXPECT_EQ(trustedTarget(Link("mine", "theirs")), std::nullopt);
    EXPECT_EQ(trustedTarget(Link("theirs-to-nothing", "missing", SOMEBODY)), std::nullopt);
}

TEST_F(TrustedFile, OnlyRegularFilesAreRead)
{
    EXPECT_EQ(readTrustedFile(m_Folder.Path()), std::nullopt);
    const std::filesystem::path pipe = m_Folder.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
    EXPECT_EQ(readTrustedFile(pipe), std::nullopt);
}

TEST_F(TrustedFile, AreReadWhole)
{
    const std::string large(100'000, 'x');
    EXPECT_EQ(readTrustedFile(m_Folder.Write("large", large)), large);
    EXPECT_EQ(readTrustedFile(m_Folder.Write("empty", "")), "");
}
