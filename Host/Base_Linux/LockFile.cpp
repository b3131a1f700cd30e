#include "Base/Platform.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Host::Platform {

namespace {

int openToLock(const std::filesystem::path& file)
{
    constexpr int flags = O_CLOEXEC | O_NOFOLLOW;
    const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | flags, 0644);
    // Somebody else's file can be locked as well, but not written to.
    return descriptor >= 0 ? descriptor : open(file.c_str(), O_RDONLY | O_NONBLOCK | flags);
}

} // namespace

struct LockFile::Native
{
    explicit Native(const std::filesystem::path& file) : m_Descriptor(openToLock(file)) {}
    ~Native()
    {
        if (m_Descriptor >= 0)
            (void)close(m_Descriptor);
    }
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    const int m_Descriptor;
};

LockFile::LockFile(const std::filesystem::path& file) : m_Native(std::make_unique<Native>(file)) {}
LockFile::~LockFile() = default;

bool LockFile::take()
{
    if (flock(m_Native->m_Descriptor, LOCK_EX | LOCK_NB) != 0)
        return errno != EWOULDBLOCK;
    const std::string identifier = std::to_string(getpid()) + '\n';
    if (ftruncate(m_Native->m_Descriptor, 0) == 0)
        (void)!pwrite(m_Native->m_Descriptor, identifier.data(), identifier.size(), 0);
    return true;
}

} // namespace Host::Platform
