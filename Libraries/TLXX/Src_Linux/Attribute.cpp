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

#include <unistd.h>

namespace TLXX::Linux {
namespace {

/** Reads what fits into `bytes`, all at once, as sysfs gives an attribute. Returns the number of bytes. */
std::size_t readOnce(int file, std::span<std::uint8_t> bytes)
{
    const ssize_t length = ::read(file, bytes.data(), bytes.size());
    if (length < 0)
        throwIfExhausted(errno);
    return length < 0 ? 0 : static_cast<std::size_t>(length);
}

} // namespace

std::string readAttribute(const char* path, int above)
{
    // A pipe in place of the attribute must not block.
    const CFileDescriptor file(path, above, O_NONBLOCK);
    throwIfExhausted(static_cast<int>(file.Status()));
    if (file.Status() != 0)
        return {};
    constexpr std::size_t LONGEST = 255;
    std::array<std::uint8_t, LONGEST> bytes; // NOLINT(cppcoreguidelines-pro-type-member-init)
    const std::span<std::uint8_t> text = std::span(bytes).first(readOnce(file.Get(), bytes));
    return boundedText({text.begin(), std::find(text.begin(), text.end(), '\n')});
}

} // namespace TLXX::Linux
