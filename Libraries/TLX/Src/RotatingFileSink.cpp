#include <TLX/TraceSink.h>

#include <cerrno>
#include <exception>
#include <fstream>
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
            // A trace never stops the traced: the line is lost.
        }
    }

private:
    bool Open()
    {
        m_Stream.open(m_Path, std::ios::app | std::ios::binary);
        if (!m_Stream.is_open())
            return false;
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
        if (m_Stream.is_open() && m_Size > 0 && m_Size + text.size() > m_MaximumSize) {
            m_Stream.close();
            Rotate();
        }
        if (!m_Stream.is_open() && !Open())
            return;
        if (m_Size > 0 && m_Size + text.size() > m_MaximumSize)
            return;
        m_Stream.clear();
        if (m_Stream.write(text.data(), static_cast<std::streamsize>(text.size())).flush())
            m_Size += text.size();
        else
            MeasureSize();
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
    std::ofstream m_Stream;
    std::uint64_t m_Size = 0;
};

} // namespace

std::shared_ptr<ISink> rotatingFileSink(const fs::path& file, std::uint64_t maximumSize, unsigned keep)
{
    return std::make_shared<CRotatingFileSink>(file, maximumSize, keep);
}

} // namespace TLX::Trace
