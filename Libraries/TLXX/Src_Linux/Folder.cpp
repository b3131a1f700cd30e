#include "Folder.h"

#include "Exhaustion.h"

#include <TLX/Linux/Descriptor.h>

#include <climits>

#include <array>
#include <cerrno>
#include <string_view>

#include <unistd.h>

namespace TLXX::Linux {

CFolder::CFolder(const char* path, int above)
{
    TLX::Linux::CDescriptor descriptor(::openat(above, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.Valid())
        m_Folder.reset(::fdopendir(descriptor.Get()));
    if (m_Folder)
        (void)descriptor.Release();
    else
        throwIfExhausted(errno);
}

const dirent* CFolder::Next()
{
    if (!m_Folder)
        return nullptr;
    errno = 0;
    const dirent* const entry = ::readdir(m_Folder.get());
    if (entry == nullptr)
        throwIfExhausted(errno);
    return entry;
}

std::string linkTarget(const CFolder& folder, const char* path)
{
    std::array<char, PATH_MAX>
        target; // NOLINT(cppcoreguidelines-pro-type-member-init): read up to its length
    const ssize_t length = ::readlinkat(folder.Get(), path, target.data(), target.size());
    if (length < 0)
        throwIfExhausted(errno);
    if (length <= 0)
        return {};
    const std::string_view text(target.data(), static_cast<std::size_t>(length));
    return std::string(text.substr(text.rfind('/') + 1));
}

} // namespace TLXX::Linux
