#include "Web/AnswerReader.h"

#include "Base/Failure.h"
#include "Base/Text.h"
#include "Web/Status.h"

#include <nlohmann/json.hpp>

namespace Host::Web {
namespace {

/** More than the service ever sends. */
constexpr std::size_t LONGEST_HEAD = 65'536;

[[noreturn]] void failToUnderstand()
{
    throw Failure(ExitCode::RequestFailed, "The answer of the service cannot be understood.");
}

/** The number at `pointer` of a problem document; 0 when there is none. */
std::uint64_t numberAt(const nlohmann::json& problem, const char* pointer)
{
    const nlohmann::json::json_pointer place(pointer);
    return problem.contains(place) && problem.at(place).is_number_unsigned()
               ? problem.at(place).get<std::uint64_t>()
               : 0;
}

} // namespace

std::optional<AnswerHead> readHead(std::string_view text)
{
    constexpr std::string_view version = "HTTP/1.1 ";
    constexpr std::string_view length = "\r\nContent-Length: ";
    const std::size_t end = text.find("\r\n\r\n");
    if (text.substr(0, version.size()) != version.substr(0, text.size()) ||
        (end == std::string_view::npos && text.size() > LONGEST_HEAD))
        failToUnderstand();
    if (end == std::string_view::npos)
        return std::nullopt;
    const auto status = parseNumber(text.substr(version.size(), 3), 10);
    if (!status)
        failToUnderstand();
    AnswerHead head{static_cast<unsigned>(*status), end + 4, std::nullopt};
    const std::size_t field = text.substr(0, end).find(length);
    if (field == std::string_view::npos)
        return head;
    text = text.substr(field + length.size());
    const auto size = parseNumber(text.substr(0, text.find('\r')), 10);
    if (!size)
        failToUnderstand();
    head.m_Length = static_cast<std::size_t>(*size);
    return head;
}

void throwProblem(unsigned status, const std::string& content)
{
    const auto problem = nlohmann::json::parse(content, nullptr, false);
    if (!problem.is_object() || !problem.contains("detail") || !problem.at("detail").is_string())
        failToUnderstand();
    const std::string detail = problem.at("detail").get<std::string>();
    if (!problem.contains("failure"))
        throw Failure(exitCodeOf(status), detail);
    // Without a service, each refusal of a plug-in is a failed request.
    throw Failure(ExitCode::RequestFailed, detail,
                  {static_cast<std::int32_t>(numberAt(problem, "/failure/request")),
                   static_cast<std::uint32_t>(numberAt(problem, "/failure/code"))});
}

} // namespace Host::Web
