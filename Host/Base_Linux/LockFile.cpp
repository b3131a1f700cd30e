#include "Base/Platform.h"

#include <TLX/Linux/Descriptor.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Host::Platform {

namespace {

using TLX::Linux::CDescriptor;

[[noreturn]] void fail(const std::filesystem::path& file, int error)
{
    throw std::system_error(error, std::generic_category(), file.string());
}

/** Throws for anything but a regular file. Anything else, a link too, does not come from this program. */
CDescriptor openToLock(const std::filesystem::path& file)
{
    constexpr int flags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    CDescriptor descriptor(open(file.c_str(), O_RDWR | O_CREAT | flags, 0644));
    const int error = errno;
    // Another user's file can be locked, too, but it cannot be written.
    if (!descriptor.Valid())
        descriptor = CDescriptor(open(file.c_str(), O_RDONLY | flags));
    struct stat status
    {};
    if (!descriptor.Valid() || fstat(descriptor.Get(), &status) != 0)
        fail(file, error);
    if (!S_ISREG(status.st_mode))
        fail(file, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    return descriptor;
}

/** Returns false when another process holds it. */
bool lock(const CDescriptor& descriptor)
{
    return flock(descriptor.Get(), LOCK_EX | LOCK_NB) == 0;
}

/** Whether this path still leads to the file of `descriptor`. */
bool isAt(const std::filesystem::path& file, const CDescriptor& descriptor)
{
    struct stat ours
    {};
    struct stat theirs
    {};
    return fstat(descriptor.Get(), &ours) == 0 && lstat(file.c_str(), &theirs) == 0 &&
           ours.st_dev == theirs.st_dev && ours.st_ino == theirs.st_ino;
}

} // namespace

struct LockFile::Native
{
    /**
     * Returns false when another process holds the folder. Its lock stays when somebody deletes the lock
     * file.
     */
    bool takeFolder()
    {
        CDescriptor folder(open(m_File.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        // Some file systems cannot lock folders, and some users may not open them. Then the lock of the file
        // decides.
        if (!lock(folder) && errno == EWOULDBLOCK)
            return false;
        m_Folder = std::move(folder);
        return true;
    }

    bool takeFile()
    {
        for (;;) {
            CDescriptor file = openToLock(m_File);
            if (!lock(file)) {
                if (errno != EWOULDBLOCK)
                    fail(m_File, errno);
                return false;
            }
            // Another process may have created a new file at this path and hold it.
            if (!isAt(m_File, file))
                continue;
            m_Locked = std::move(file);
            return true;
        }
    }

    void writeIdentifier() const
    {
        const std::string identifier = std::to_string(getpid()) + '\n';
        if (ftruncate(m_Locked.Get(), 0) == 0)
            (void)!pwrite(m_Locked.Get(), identifier.data(), identifier.size(), 0);
    }

    const std::filesystem::path m_File;
    CDescriptor m_Folder{};
    CDescriptor m_Locked{};
};

LockFile::LockFile(const std::filesystem::path& file) : m_Native(std::make_unique<Native>(Native{file})) {}
LockFile::~LockFile() = default;

bool LockFile::take()
{
    if (!m_Native->takeFolder())
        return false;
    if (!m_Native->takeFile()) {
        m_Native->m_Folder = CDescriptor();
        return false;
    }
    m_Native->writeIdentifier();
    return true;
}

} // namespace Host::Platform
