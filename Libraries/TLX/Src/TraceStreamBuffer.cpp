#include "EscapeControls.h"
#include "SinkSlot.h"

#include <TLX/Clock.h>
#include <TLX/TraceStreamBuffer.h>

#include <boost/format.hpp>

#include <exception>
#include <locale>
#include <new>
#include <optional>
#include <variant>
#include <vector>

namespace TLX::Internals {
namespace {

using Argument = std::variant<std::int64_t, std::uint64_t, std::string>;

/**
 * Uses the classic locale, because a host's locale may put separators into numbers. The standard library
 * fills the tables of its facet at the first use without a lock. So they are used once while the library is
 * loaded, when there is only one thread.
 */
const std::locale& preparedLocale()
{
    const auto& facet = std::use_facet<std::ctype<char>>(std::locale::classic());
    const char blank = facet.widen(' ');
    char narrowed = 0;
    facet.narrow(&blank, &blank + 1, ' ', &narrowed);
    return std::locale::classic();
}

const std::locale& g_Locale = preparedLocale();

std::string fill(const std::string& format, const std::vector<Argument>& arguments)
{
    boost::format text(format, g_Locale);
    for (const Argument& argument : arguments)
        std::visit([&text](const auto& value) { text % value; }, argument);
    return text.str();
}

std::string append(std::string text, const std::vector<Argument>& arguments)
{
    for (const Argument& argument : arguments) {
        text += ' ';
        if (const auto* words = std::get_if<std::string>(&argument))
            text += *words;
        else if (const auto* number = std::get_if<std::int64_t>(&argument))
            text += std::to_string(*number);
        else
            text += std::to_string(std::get<std::uint64_t>(argument));
    }
    return text;
}

} // namespace

struct CTraceStreamBuffer::Line
{
    std::string Text() const
    {
        const std::string format = m_Format.value_or(std::string());
        try {
            return fill(format, m_Arguments);
        } catch (const boost::io::format_error&) {
            return append(format, m_Arguments);
        }
    }

    void Add(std::string_view text)
    {
        if (m_Format)
            m_Arguments.emplace_back(escapeControls(text));
        else
            m_Format = text;
    }

    void Add(const Argument& number) { m_Arguments.push_back(number); }

    /** Appends `value` to `line`. The line is lost when memory is short. */
    template<typename Value>
    static void feed(std::unique_ptr<Line>& line, Value value) noexcept
    {
        if (!line)
            return;
        try {
            line->Add(value);
        } catch (const std::exception&) {
            line.reset();
        }
    }

    std::uint32_t m_Level;
    const Misc::CModuleInfo& m_Module;
    std::string_view m_SourceUnit;
    std::string_view m_Function;
    std::uint32_t m_SourceLine;
    std::optional<std::string> m_Format;
    std::vector<Argument> m_Arguments;
};

CTraceStreamBuffer::CTraceStreamBuffer(std::uint32_t level, const Misc::CModuleInfo& module,
                                       std::string_view sourceUnit, std::string_view function,
                                       std::uint32_t sourceLine) noexcept
    : m_Line(new (std::nothrow) Line{level, module, sourceUnit, function, sourceLine, {}, {}})
{}

CTraceStreamBuffer::~CTraceStreamBuffer()
{
    if (!m_Line)
        return;
    try {
        const std::string text = m_Line->Text();
        Trace::write({Misc::now(), m_Line->m_Module.Number(), m_Line->m_Module.Name(), m_Line->m_Level,
                      m_Line->m_SourceUnit, m_Line->m_Function, m_Line->m_SourceLine, text});
    } catch (const std::exception&) {
        // When memory is short the line is lost; the traced code goes on.
    }
}

CTraceStreamBuffer& CTraceStreamBuffer::operator<<(std::string_view text) noexcept
{
    Line::feed(m_Line, text);
    return *this;
}

void CTraceStreamBuffer::Feed(std::int64_t value) noexcept
{
    Line::feed(m_Line, value);
}

void CTraceStreamBuffer::Feed(std::uint64_t value) noexcept
{
    Line::feed(m_Line, value);
}

} // namespace TLX::Internals
