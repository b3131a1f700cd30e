#pragma once

#include <TLX/Linux/Descriptor.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace HostTest {

/** An answer as it came. */
struct RawAnswer
{
    unsigned m_Status = 0;                        ///< 0: the connection ended before an answer
    std::map<std::string, std::string> m_Headers; ///< names as they were sent
    std::string m_Body;
};

/**
 * A client that sends whatever a test wants. Waits end after ten minutes, which only a server that hangs
 * makes happen. Then the test fails.
 */
class RawClient
{
public:
    /** Connects to a server at "http://ADDRESS:PORT". */
    explicit RawClient(const std::string& url);
    /** Connects to a local socket. */
    explicit RawClient(const std::filesystem::path& socket);

    /** Sends all of the text. Returns whether the system took it. */
    bool send(std::string_view text) const;
    /** Reads one answer, without a body when `isHeadAlone`. */
    RawAnswer receive(bool isHeadAlone = false);
    /** Reads until `text` has come, and returns everything up to its end; what came before the end if it
     * never comes. */
    std::string receiveUntil(std::string_view text);
    /** Reads until the server ends the connection. */
    std::string receiveAll();
    /** Whether something has come, or the connection has ended. Does not wait. */
    bool hasNews() const;
    /** Sends no more. */
    void endSending() const;
    /** Goes away like a process that is killed while data for it is on the way. */
    void vanish();

private:
    bool readMore();

    TLX::Linux::CDescriptor m_Socket;
    std::string m_Read;
};

/** A request without content. */
std::string rawRequest(std::string_view path, std::string_view fields = {}, std::string_view method = "GET");

/** The answer to one request over a connection of its own. */
RawAnswer askOnce(const std::string& url, std::string_view path, std::string_view fields = {});

} // namespace HostTest
