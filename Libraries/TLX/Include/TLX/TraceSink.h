#pragma once

#include <TLX/Export.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace TLX::Trace {

/** One trace line. The views hold for the duration of the call that hands it over. */
struct CLine
{
    std::uint64_t m_Time; ///< milliseconds since 1970-01-01T00:00:00Z
    std::uint32_t m_ModuleNumber;
    std::string_view m_ModuleName;
    std::uint32_t m_Level;
    std::string_view m_SourceUnit; ///< the unit's folder in the repository
    std::string_view m_Function;   ///< qualified name
    std::uint32_t m_SourceLine;
    std::string_view m_Text; ///< control characters of the arguments are escaped
};

/** Takes trace lines. `Write` may be called from any thread, but never by two at once; it must not trace. */
class TLX_EXPORT ISink
{
public:
    ISink() = default;
    virtual ~ISink();
    ISink(const ISink&) = delete;
    ISink& operator=(const ISink&) = delete;

    /** Takes one line, or drops it. */
    virtual void Write(const CLine& line) noexcept = 0;
};

/**
 * The line as text, without a line end. One blank separates its parts:
 *     2026-01-01T00:00:00.000Z Ostrel 2 Ostrel/Src/Ostrel NAMESPACE_Ostrel::CName::Method:120 the text
 * These are time (UTC), module name, level, source unit, function with source line, text. Control characters
 * of any part are escaped, so it is always one line.
 */
TLX_EXPORT std::string formatLine(const CLine& line);

/** Writes lines to the process's standard error. */
TLX_EXPORT std::shared_ptr<ISink> standardErrorSink();

/**
 * Writes lines to `file`. When a line would make it larger than `maximumSize` bytes, the file is first
 * renamed to "<file>.1", and that to "<file>.2", up to `keep`. A longer line gets a file of its own.
 *
 * A terminal, a named pipe or another special file is never renamed. Lines that a pipe does not accept at
 * once are dropped. Throws `std::system_error` when the file cannot be opened, or when it is a named pipe
 * without a reader. Later failures drop the line, because a trace must never stop the traced code.
 */
TLX_EXPORT std::shared_ptr<ISink> rotatingFileSink(const std::filesystem::path& file,
                                                   std::uint64_t maximumSize = 8U << 20U, unsigned keep = 3);

/**
 * Sets the sink of all lines of the process; null (the initial state): none. After this returns, the former
 * sink gets no more lines. Safe from any thread.
 */
TLX_EXPORT void setSink(std::shared_ptr<ISink> sink);

/** Sets the mask of module `moduleNumber`, whether it is loaded already or later. */
TLX_EXPORT void setMask(std::uint32_t moduleNumber, std::uint32_t mask);

/**
 * Sets the mask of every module without a mask of its own, loaded now or later. Initially 0.
 */
TLX_EXPORT void setDefaultMask(std::uint32_t mask);

} // namespace TLX::Trace
