#include "Core/Platform.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Host::Platform {

struct LockFile::Native
{
    explicit Native(const std::filesystem::path& file)
        : m_Descriptor(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644))
    {}
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
