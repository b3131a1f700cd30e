#include "Web/JournalStream.h"

#include "Documents/EntryJson.h"
#include "Documents/Json.h"

#include <nlohmann/json.hpp>

namespace Host::Web {
namespace {

/** Entries that are sent together. A slow client makes the server keep no more than these. */
constexpr std::size_t MOST_TOGETHER = 64;

} // namespace

std::vector<Journal::NumberedEntry> entriesAfter(const IServiceView& view, std::uint64_t after,
                                                 std::size_t limit)
{
    std::vector<Journal::NumberedEntry> entries = view.journal(after, limit);
    const bool isUnknown = entries.empty() && after > 0 && view.journal(after - 1, 1).empty();
    return isUnknown ? view.journal(0, limit) : entries;
}

std::string JournalStream::next()
{
    std::string text;
    for (const Journal::NumberedEntry& entry : entriesAfter(m_View, m_After, MOST_TOGETHER)) {
        m_After = entry.m_Number;
        text += "id: " + std::to_string(entry.m_Number) +
                "\ndata: " + Cli::lineText(Cli::numberedEntryJson(entry), m_Simulated) + '\n';
    }
    return text;
}

} // namespace Host::Web
