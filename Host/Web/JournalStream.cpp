#include "Web/JournalStream.h"

#include "Documents/EntryJson.h"
#include "Documents/Json.h"

#include <nlohmann/json.hpp>

namespace Host::Web {
namespace {

/** Entries that are sent together. A slow client makes the server keep no more than these. */
constexpr std::size_t MOST_TOGETHER = 64;

} // namespace

std::string JournalStream::next()
{
    std::string text;
    for (const Journal::NumberedEntry& entry : m_View.journal(m_After, MOST_TOGETHER)) {
        m_After = entry.m_Number;
        text += "id: " + std::to_string(entry.m_Number) +
                "\ndata: " + Cli::lineText(Cli::numberedEntryJson(entry), m_Simulated) + '\n';
    }
    return text;
}

} // namespace Host::Web
