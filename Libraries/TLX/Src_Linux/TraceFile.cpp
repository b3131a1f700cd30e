#include "TraceFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace TLX::Trace {

bool CTraceFile::Open(const std::filesystem::path& file)
{
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    constexpr mode_t mode = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    m_Descriptor.emplace(open(file.c_str(), flags, mode));
    if (m_Descriptor->Valid())
        return true;
    m_Descriptor.reset();
    return false;
}

bool CTraceFile::Append(std::string_view text) const
{
    while (!text.empty()) {
        const ssize_t written = write(m_Descriptor->Get(), text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace TLX::Trace
