#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Host::Web {

/** The target of a request: what is between the method and the version. */
struct Target
{
    std::string m_Host; ///< with the port, as the target has it; empty when it has none
    std::string m_Path;
    std::map<std::string, std::string> m_Query;
};

/**
 * Takes a target such as "/a%20b?c=d" or "http://host:80/a%20b?c=d" apart. Each percent sign is decoded once.
 * Returns nothing when it has another scheme, a user, no path, a wrong percent sign, a control character or a
 * parameter twice.
 */
std::optional<Target> parseTarget(std::string_view target);

} // namespace Host::Web
