#include "Base/Platform.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <system_error>

#include <dlfcn.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

int g_FileLockError = 0; ///< with which regular files cannot be locked; 0: they can
int g_FolderLockError = 0;

int errorFor(int descriptor)
{
    struct stat status
    {};
    if (fstat(descriptor, &status) != 0)
        return 0;
    return S_ISDIR(status.st_mode) ? g_FolderLockError : g_FileLockError;
}

} // namespace

/** Replaces the C library's in this program. */
extern "C" __attribute__((visibility("default"))) int flock(int descriptor, int operation) noexcept
{
    if (const int error = errorFor(descriptor); error != 0) {
        errno = error;
        return -1;
    }
    static auto* const real = reinterpret_cast<int (*)(int, int)>(dlsym(RTLD_NEXT, "flock"));
    return real(descriptor, operation);
}

namespace {

using Host::Platform::LockFile;

class LockFileTest : public testing::Test
{
protected:
    ~LockFileTest() override { g_FileLockError = g_FolderLockError = 0; }

    const TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_File = m_Folder.Path() / "lock";
    LockFile m_Lock{m_File};
};

TEST_F(LockFileTest, IsHeldByOneAtATime)
{
    LockFile other(m_File);
    EXPECT_TRUE(m_Lock.take());
    EXPECT_FALSE(other.take());
}

TEST_F(LockFileTest, IsNotTakenWhenTheSystemCannotLockIt)
{
    g_FileLockError = ENOLCK;
    try {
        (void)m_Lock.take();
        FAIL() << "nobody holds it, and nobody may";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), ENOLCK);
        EXPECT_NE(std::string(error.what()).find(m_File.string()), std::string::npos);
    }
}

TEST_F(LockFileTest, IsEnoughWhereFoldersCannotBeLocked)
{
    g_FolderLockError = ENOLCK;
    LockFile other(m_File);
    EXPECT_TRUE(m_Lock.take());
    EXPECT_FALSE(other.take()) << "the file is held";
    g_FolderLockError = EWOULDBLOCK;
    LockFile third(m_Folder.Path() / "other");
    EXPECT_FALSE(third.take()) << "the folder is held";
}

} // namespace
