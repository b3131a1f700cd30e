#include "Web/EventReader.h"

#include <utility>

namespace Host::Web {

void EventReader::add(std::string_view piece, const std::function<void(const SentEvent&)>& take)
{
    for (std::size_t end = piece.find('\n'); end != std::string_view::npos; end = piece.find('\n')) {
        m_Line += piece.substr(0, end);
        piece.remove_prefix(end + 1);
        readLine(std::exchange(m_Line, {}), take);
    }
    m_Line += piece;
}

void EventReader::readLine(std::string_view line, const std::function<void(const SentEvent&)>& take)
{
    constexpr std::string_view id = "id: ";
    constexpr std::string_view data = "data: ";
    if (line.starts_with(id))
        m_Event.m_Id = line.substr(id.size());
    else if (line.starts_with(data))
        m_Event.m_Data = line.substr(data.size());
    else if (line.empty() && !m_Event.m_Data.empty())
        take(std::exchange(m_Event, {}));
}

} // namespace Host::Web
