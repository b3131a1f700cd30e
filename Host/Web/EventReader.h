#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Host::Web {

/** An event that the service sent. */
struct SentEvent
{
    std::string m_Id;
    std::string m_Data;
};

/** Takes a stream of server-sent events apart. */
class EventReader
{
public:
    /** Adds a piece of the stream, and calls `take` with each event that is complete now. */
    void add(std::string_view piece, const std::function<void(const SentEvent&)>& take);

private:
    void readLine(std::string_view line, const std::function<void(const SentEvent&)>& take);

    std::string m_Line;
    SentEvent m_Event;
};

} // namespace Host::Web
