#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Host {

/** An instant on the machine's clock, with what tells whether the clock was set or the machine restarted. */
struct Moment
{
    std::uint64_t m_Time = 0; ///< milliseconds since 1970
    /** Milliseconds since the machine started, also counted while it sleeps. Nobody can set it. */
    std::optional<std::uint64_t> m_Uptime;
    std::string m_Boot; ///< differs from boot to boot; empty: the system does not tell it

    friend bool operator==(const Moment&, const Moment&) = default;
};

Moment presentMoment();

} // namespace Host
