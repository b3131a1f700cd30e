#pragma once

#include <chrono>
#include <cstddef>

namespace Host::Web {

/** What the server allows. A test may set other figures. Callers over TCP, those at the local socket and
 * those at it who may change something have places of their own, so many each. */
struct Limits
{
    std::size_t m_Header = 8192; ///< bytes of the request line and the header fields
    std::size_t m_Body = 65536;  ///< bytes of a request's content
    std::size_t m_Connections = 64;
    std::size_t m_Streams = 32; ///< of events; they are not counted as connections
    /** The most time for each of three steps: to receive a request, to prepare its answer, to send it. */
    std::chrono::milliseconds m_Request{10'000};
    /** How long a stream may say nothing. Then a comment shows that it still exists. */
    std::chrono::milliseconds m_Silence{15'000};
};

} // namespace Host::Web
