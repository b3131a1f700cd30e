#pragma once

#include "Web/Exchange.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Host::Web {

/** The way by which a request came. */
enum class Door : unsigned char
{
    Local,    ///< the local socket; the system tells who the caller is
    Loopback, ///< an address that only this machine reaches
    Network,
};

/** Who may do what. */
struct AccessSettings
{
    std::string m_Token; ///< lets callers from other machines in; empty: none may come
    /** Names of this machine in addresses, beside those of loopback. In small letters. */
    std::vector<std::string> m_HostNames;
};

/**
 * Lets a request in, and sets in it what the caller may do; or returns the answer that refuses it.
 * `isTrustedPeer` says whether the caller at the local socket may change something.
 */
std::optional<Response> admit(const AccessSettings& settings, Door door, bool isTrustedPeer,
                              Request& request);

/** Whether two texts are equal. The time that it takes does not tell where they differ. */
bool equalInConstantTime(std::string_view a, std::string_view b);

} // namespace Host::Web
