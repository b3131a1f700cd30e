#pragma once

#include <TLX/Export.h>
#include <TLX/ModuleInfo.h>

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace TLX::Internals {

/**
 * One trace line. The first text streamed in is the format ("%s", "%d", "%x" directives), the others are its
 * arguments; the destructor hands the line to the process's sink. The caller tests the mask before it makes
 * one, and keeps the texts alive that the views refer to. Control characters of text arguments, and bytes
 * that are not UTF-8, appear as "\n", "\r", "\t" or "\xNN". No operation throws. A format that does not fit
 * its arguments is written unchanged, with the arguments after it.
 */
class TLX_EXPORT CTraceStreamBuffer
{
public:
    CTraceStreamBuffer(std::uint32_t level, const Misc::CModuleInfo& module, std::string_view sourceUnit,
                       std::string_view function, std::uint32_t sourceLine) noexcept;
    ~CTraceStreamBuffer();
    CTraceStreamBuffer(const CTraceStreamBuffer&) = delete;
    CTraceStreamBuffer& operator=(const CTraceStreamBuffer&) = delete;

    /** The format, or a text argument. */
    CTraceStreamBuffer& operator<<(std::string_view text) noexcept;

    /** A number, as an argument. */
    template<std::integral T>
    CTraceStreamBuffer& operator<<(T value) noexcept
    {
        if constexpr (std::signed_integral<T>)
            Feed(static_cast<std::int64_t>(value));
        else
            Feed(static_cast<std::uint64_t>(value));
        return *this;
    }

private:
    void Feed(std::int64_t value) noexcept;
    void Feed(std::uint64_t value) noexcept;

    struct Line;
    std::unique_ptr<Line> m_Line; ///< null when memory ran out: the line is then lost
};

/**
 * The qualified name in the compiler's description of a function, without its result type and arguments. A
 * lambda, or a function of a local class, has the name of the function around it. A text that is no function
 * is returned unchanged.
 */
TLX_EXPORT std::string_view qualifiedName(std::string_view prettyFunction);

} // namespace TLX::Internals
