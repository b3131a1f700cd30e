#include "Attribute.h"

#include "Exhaustion.h"
#include "FileDescriptor.h"

#include <TLXX/NvmeText.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <span>

#include <sys/stat.h>
#include <unistd.h>

namespace TLXX::Linux {
namespace {

/** Reads until `bytes` is full or the file ends; returns the number of bytes read. */
std::size_t readWhole(int file, std::span<std::uint8_t> bytes)
{
    std::size_t length = 0;
    while (length < bytes.size()) {
        const ssize_t more = ::read(file, bytes.data() + length, bytes.size() - length);
        if (more < 0)
            throwIfExhausted(errno);
        if (more <= 0)
            break;
        length += static_cast<std::size_t>(more);
    }
    return length;
}

} // namespace

std::string readAttribute(const char* path, int above)
{
    // A pipe or another special file in place of the attribute must not block.
    const CFileDescriptor file(path, above, O_NONBLOCK);
    throwIfExhausted(static_cast<int>(file.Status()));
    struct stat status = {};
    if (file.Status() != 0 || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    constexpr std::size_t LONGEST = 255;
    std::array<std::uint8_t, LONGEST> bytes; // NOLINT(cppcoreguidelines-pro-type-member-init)
    const std::span<std::uint8_t> text = std::span(bytes).first(readWhole(file.Get(), bytes));
    return boundedText({text.begin(), std::find(text.begin(), text.end(), '\n')});
}

} // namespace TLXX::Linux
