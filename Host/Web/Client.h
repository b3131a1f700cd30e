#pragma once

#include "Web/EventReader.h"

#include <TLX/Event.h>

#include <filesystem>
#include <functional>
#include <string>

namespace Host::Web {

/** Why following a stream ended. */
enum class FollowEnd : unsigned char
{
    Asked,   ///< the caller wanted it
    Service, ///< the service ended it
};

/**
 * Asks the service that runs on this machine over its local socket. Each call waits for its answer and throws
 * `Failure` when there is no service, when it does not answer, and when it refuses; then with its reason. On
 * Windows there is no such socket, and each call fails.
 */
class Client
{
public:
    explicit Client(std::filesystem::path socket) : m_Socket(std::move(socket)) {}

    /** Whether a service listens. */
    bool isThere() const;

    /** The content of what is at `target`, a path with a query. */
    std::string get(const std::string& target) const;

    /** Sends a JSON document to `target`, and returns the content of the answer. */
    std::string put(const std::string& target, const std::string& document) const;

    /**
     * Calls `take`, on another thread, with each event of the stream at `target` until `stop` is signalled.
     * An exception of `take` ends it, too, and is thrown here.
     */
    FollowEnd follow(const std::string& target, const std::function<void(const SentEvent&)>& take,
                     TLX::Threading::CEvent& stop) const;

private:
    std::filesystem::path m_Socket;
};

/** The local socket of the service that the system started. */
std::filesystem::path usualService();

} // namespace Host::Web
