#include "Descriptor.h"

#include <TLX/RegularFile.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace TLX::Misc {

std::optional<std::string> readRegularFile(const std::filesystem::path& file, std::size_t largest)
{
    // What is opened is looked at, and not what was at that place a moment before.
    const Threading::CDescriptor descriptor(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status
    {};
    if (!descriptor.Valid() || fstat(descriptor.Get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    std::string text;
    char chunk[1U << 14U];
    for (;;) {
        const ssize_t size = read(descriptor.Get(), chunk, sizeof chunk);
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

} // namespace TLX::Misc
