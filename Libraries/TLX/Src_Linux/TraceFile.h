#pragma once

#include <TLX/Linux/Descriptor.h>

#include <filesystem>
#include <optional>
#include <string_view>

namespace TLX::Trace {

/** A file for trace lines: anything that can be written. No operation waits for another process. */
class CTraceFile
{
public:
    /** Creates the file when it is missing. When it returns false, `errno` has the reason. */
    bool Open(const std::filesystem::path& file);
    void Close() { m_Descriptor.reset(); }
    bool IsOpen() const { return m_Descriptor.has_value(); }

    /** Returns false when not everything could be written. */
    bool Append(std::string_view text) const;

private:
    std::optional<Linux::CDescriptor> m_Descriptor;
};

} // namespace TLX::Trace
