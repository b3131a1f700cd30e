#include "Web/Problem.h"

#include "Documents/Json.h"
#include "Web/Status.h"

#include <nlohmann/json.hpp>

namespace Host::Web {
namespace {

using ProblemJson = nlohmann::ordered_json;

ProblemJson problemJson(unsigned status, const std::string& detail)
{
    return {{"type", "about:blank"}, {"title", statusText(status)}, {"status", status}, {"detail", detail}};
}

Response answer(unsigned status, const ProblemJson& json)
{
    Response response;
    response.m_Status = status;
    response.m_Type = "application/problem+json";
    response.m_Body = Cli::documentText(json);
    if (status == 401)
        response.m_Headers.emplace_back("WWW-Authenticate", "Bearer");
    return response;
}

} // namespace

Response problem(unsigned status, const std::string& detail, const std::string& parameter)
{
    ProblemJson json = problemJson(status, detail);
    if (!parameter.empty())
        json["parameter"] = parameter;
    return answer(status, json);
}

Response problem(const Failure& failure)
{
    const unsigned status = statusOf(failure);
    ProblemJson json = problemJson(status, failure.what());
    if (failure.result())
        json["failure"] = Cli::failureJson(failure.what(), failure.result()).at("error");
    return answer(status, json);
}

} // namespace Host::Web
