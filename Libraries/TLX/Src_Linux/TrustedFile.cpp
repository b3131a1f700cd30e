#include "ReadFile.h"

#include <TLX/RegularFile.h>
#include <TLX/TrustedFile.h>

#include <climits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace TLX::Misc {
namespace {

/** The target of the open link; nothing when it cannot be read. */
std::optional<std::filesystem::path> contentOf(const Linux::CDescriptor& link)
{
    char text[PATH_MAX];
    const ssize_t size = readlinkat(link.Get(), "", text, sizeof text);
    if (size <= 0 || size == static_cast<ssize_t>(sizeof text))
        return std::nullopt;
    return std::filesystem::path(text, text + size);
}

bool isTrusted(uid_t owner)
{
    return owner == 0 || owner == geteuid();
}

} // namespace

std::optional<std::filesystem::path> trustedTarget(const std::filesystem::path& path)
{
    constexpr int MOST_LINKS = 40; // the kernel's own limit
    std::filesystem::path target = path;
    for (int followed = 0; followed <= MOST_LINKS; ++followed) {
        // Owner and content are those of the same link, even when another link replaces it meanwhile.
        const Linux::CDescriptor entry(open(target.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        struct stat status
        {};
        if (!entry.Valid() || fstat(entry.Get(), &status) != 0 || !S_ISLNK(status.st_mode))
            return target;
        const auto next = isTrusted(status.st_uid) ? contentOf(entry) : std::nullopt;
        if (!next)
            return std::nullopt;
        target = target.parent_path() / *next;
    }
    return std::nullopt;
}

std::optional<std::string> readTrustedFile(const std::filesystem::path& path)
{
    const auto target = trustedTarget(path);
    if (!target)
        return std::nullopt;
    // A link that has replaced the target meanwhile is not followed.
    return readFile(Linux::CDescriptor(open(target->c_str(), READ_WITHOUT_WAITING | O_NOFOLLOW)),
                    LARGEST_FILE);
}

} // namespace TLX::Misc
