#include "ReadFile.h"

#include <TLX/RegularFile.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace TLX::Misc {

const int READ_WITHOUT_WAITING = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

std::optional<std::string> readFile(const Linux::CDescriptor& file, std::size_t largest)
{
    // Checks the open file, because the path may have led to another file a moment before.
    struct stat status
    {};
    if (!file.Valid() || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    std::string text;
    char chunk[1U << 14U];
    for (;;) {
        const ssize_t size = read(file.Get(), chunk, sizeof chunk);
        if (size == 0)
            return text;
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            return std::nullopt;
        text.append(chunk, static_cast<std::size_t>(size));
        if (text.size() > largest)
            return std::nullopt;
    }
}

std::optional<std::string> readRegularFile(const std::filesystem::path& file, std::size_t largest)
{
    return readFile(Linux::CDescriptor(open(file.c_str(), READ_WITHOUT_WAITING)), largest);
}

} // namespace TLX::Misc
