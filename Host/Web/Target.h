#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Host::Web {

/** The target of a request: what is between the method and the version. */
struct Target
{
    std::string m_Path;
    std::map<std::string, std::string> m_Query;
};

/**
 * Takes a target such as "/a%20b?c=d" apart. Each percent sign is decoded once. Returns nothing when it has
 * no path, a wrong percent sign, a control character or a parameter twice.
 */
std::optional<Target> parseTarget(std::string_view target);

} // namespace Host::Web
