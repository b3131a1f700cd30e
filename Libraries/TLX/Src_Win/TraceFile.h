#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>

namespace TLX::Trace {

/** A file for trace lines: anything that can be written. */
class CTraceFile
{
public:
    /** Creates the file when it is missing. When it returns false, `errno` has the reason. */
    bool Open(const std::filesystem::path& file)
    {
        m_Stream.open(file, std::ios::app | std::ios::binary);
        return m_Stream.is_open();
    }
    void Close() { m_Stream.close(); }
    bool IsOpen() const { return m_Stream.is_open(); }

    /** Returns false when not everything could be written. */
    bool Append(std::string_view text)
    {
        m_Stream.clear();
        return !m_Stream.write(text.data(), static_cast<std::streamsize>(text.size())).flush().fail();
    }

private:
    std::ofstream m_Stream;
};

} // namespace TLX::Trace
