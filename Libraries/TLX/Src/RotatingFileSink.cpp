#include "TraceFile.h"

#include <TLX/RegularFile.h>
#include <TLX/TraceSink.h>

#include <cerrno>
#include <exception>
#include <system_error>
#include <utility>

namespace TLX::Trace {
namespace {

namespace fs = std::filesystem;

class CRotatingFileSink final : public ISink
{
public:
    CRotatingFileSink(fs::path file, std::uint64_t maximumSize, unsigned keep)
        : m_Path(std::move(file)), m_MaximumSize(maximumSize), m_Keep(keep)
    {
        errno = 0;
        if (!Open())
            throw std::system_error(errno != 0 ? errno : EIO, std::generic_category(), m_Path.string());
    }

    void Write(const CLine& line) noexcept override
    {
        try {
            Append(formatLine(line) + '\n');
        } catch (const std::exception&) {
            // The line is lost, because a trace must never stop the traced code.
        }
    }

private:
    bool Open()
    {
        if (!m_File.Open(m_Path))
            return false;
        m_Rotates = !Misc::isSpecialFile(m_Path);
        MeasureSize();
        return true;
    }

    void MeasureSize()
    {
        std::error_code error;
        const std::uintmax_t size = fs::file_size(m_Path, error);
        m_Size = error ? 0 : size;
    }

    void Append(const std::string& text)
    {
        // A line longer than a whole file gets a file of its own.
        if (m_File.IsOpen() && IsFullFor(text)) {
            m_File.Close();
            Rotate();
        }
        if (!m_File.IsOpen() && !Open())
            return;
        if (IsFullFor(text))
            return;
        if (m_File.Append(text))
            m_Size += text.size();
        else
            MeasureSize();
    }

    bool IsFullFor(const std::string& text) const
    {
        return m_Rotates && m_Size > 0 && m_Size + text.size() > m_MaximumSize;
    }

    fs::path Numbered(unsigned number) const
    {
        return number == 0 ? m_Path : fs::path(m_Path) += "." + std::to_string(number);
    }

    void Rotate() const
    {
        std::error_code ignored;
        if (m_Keep == 0)
            fs::remove(m_Path, ignored);
        for (unsigned number = m_Keep; number > 0; --number)
            fs::rename(Numbered(number - 1), Numbered(number), ignored);
    }

    fs::path m_Path;
    std::uint64_t m_MaximumSize;
    unsigned m_Keep;
    CTraceFile m_File;
    bool m_Rotates = true; ///< false for a terminal or a pipe, which has no size
    std::uint64_t m_Size = 0;
};

} // namespace

std::shared_ptr<ISink> rotatingFileSink(const fs::path& file, std::uint64_t maximumSize, unsigned keep)
{
    return std::make_shared<CRotatingFileSink>(file, maximumSize, keep);
}

} // namespace TLX::Trace
