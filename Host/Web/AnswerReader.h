#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Host::Web {

/** The beginning of an answer of the service, as a client reads it. */
struct AnswerHead
{
    unsigned m_Status = 0;
    std::size_t m_Size = 0;              ///< of the beginning itself, in bytes
    std::optional<std::size_t> m_Length; ///< of the content
};

/**
 * Reads the beginning of an answer. Returns nothing as long as it is not complete. Throws `Failure` when this
 * is no answer of the service.
 */
std::optional<AnswerHead> readHead(std::string_view text);

/** Throws the failure that the content of an answer with this status tells of. */
[[noreturn]] void throwProblem(unsigned status, const std::string& content);

} // namespace Host::Web
