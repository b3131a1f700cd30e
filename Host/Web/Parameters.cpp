#include "Web/Parameters.h"

#include "Base/Text.h"

namespace Host::Web {

std::uint64_t parameterNumber(const std::string& name, std::string_view text, Bounds bounds)
{
    const auto number = parseNumber(text, 10);
    if (!number || *number < bounds.m_Least || *number > bounds.m_Most)
        throw WrongParameter(name, "The parameter " + name + " must be a whole number from " +
                                       std::to_string(bounds.m_Least) + " to " +
                                       std::to_string(bounds.m_Most) + ".");
    return *number;
}

std::optional<std::uint64_t> queryNumber(const Request& request, const std::string& name, Bounds bounds)
{
    const auto found = request.m_Query.find(name);
    if (found == request.m_Query.end())
        return std::nullopt;
    return parameterNumber(name, found->second, bounds);
}

} // namespace Host::Web
