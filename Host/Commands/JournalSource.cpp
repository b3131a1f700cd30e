#include "Commands/JournalSource.h"

#include "Base/Failure.h"
#include "Base/Platform.h"
#include "Commands/RunningService.h"
#include "Commands/ServiceCommands.h"
#include "Documents/EntryJson.h"
#include "Documents/Json.h"
#include "Journal/Reader.h"
#include "Journal/Store.h"
#include "Terminal/EventLine.h"

#include <TLX/WaitInterval.h>
#include <TLX/WaitResult.h>
#include <TLX/Waiter.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace Host::Cli {
namespace {

constexpr std::size_t ENTRIES_TOGETHER = 1000;

class JournalFile : public IJournalSource
{
public:
    /** Throws `Failure` when the file cannot be read. */
    JournalFile(const Options& options, const Screen& screen)
        : m_Json(options.m_Json),
          m_Simulated(options.m_Fleet.has_value()),
          m_Since(options.m_Since.value_or(0)),
          m_Screen(screen),
          m_Reader(Journal::serviceFile(options.m_Data.value_or(Platform::defaultDataFolder())))
    {
        (void)m_Reader.lastNumber();
    }

    std::uint64_t read(std::uint64_t after, const TakeLine& take) override
    {
        const std::uint64_t last = m_Reader.lastNumber();
        // A new journal in the same place begins anew.
        if (last < after)
            after = 0;
        for (;;) {
            const std::vector<Journal::NumberedEntry> entries =
                m_Reader.read(after, ENTRIES_TOGETHER, m_Since);
            for (const Journal::NumberedEntry& entry : entries)
                take(line(entry));
            // The last entries may be from before that time.
            if (entries.empty())
                return std::max(after, last);
            after = entries.back().m_Number;
        }
    }

    Web::FollowEnd follow(std::uint64_t after, const TakeLine& take, TLX::Threading::CEvent& stop) override
    {
        constexpr std::uint32_t pause = 1000; // milliseconds; nobody announces a new entry
        TLX::Threading::CWaiter waiter{&stop};
        while (waiter.Wait(TLX::Threading::CWaitInterval(pause)) == TLX::Threading::WaitResult::TimedOut)
            after = read(after, take);
        return Web::FollowEnd::Asked;
    }

private:
    std::string line(const Journal::NumberedEntry& entry) const
    {
        return m_Json ? lineText(numberedEntryJson(entry), m_Simulated) : entryLine(entry.m_Entry, m_Screen);
    }

    const bool m_Json;
    const bool m_Simulated;
    const std::uint64_t m_Since;
    const Screen m_Screen;
    Journal::Reader m_Reader;
};

class JournalOfService : public IJournalSource
{
public:
    JournalOfService(RunningService service, const Options& options, const Screen& screen)
        : m_Service(std::move(service)),
          m_Json(options.m_Json),
          m_Since(options.m_Since.value_or(0)),
          m_Screen(screen)
    {}

    std::uint64_t read(std::uint64_t after, const TakeLine& take) override
    {
        for (;;) {
            const auto document = nlohmann::ordered_json::parse(
                m_Service.m_Client.get("/api/v1/journal?after=" + std::to_string(after) +
                                       "&limit=" + std::to_string(ENTRIES_TOGETHER)));
            const bool simulated = document.value("simulated", false);
            if (document.at("entries").empty())
                return after;
            for (const nlohmann::ordered_json& entry : document.at("entries")) {
                takeEntry(entry, simulated, take);
                after = entry.at("number").get<std::uint64_t>();
            }
        }
    }

    Web::FollowEnd follow(std::uint64_t after, const TakeLine& take, TLX::Threading::CEvent& stop) override
    {
        // An event's own document says if the drives are simulated.
        return m_Service.m_Client.follow(
            "/api/v1/journal/stream?after=" + std::to_string(after),
            [&](const Web::SentEvent& event) {
                takeEntry(nlohmann::ordered_json::parse(event.m_Data), false, take);
            },
            stop);
    }

private:
    void takeEntry(const nlohmann::ordered_json& json, bool simulated, const TakeLine& take) const
    {
        const Journal::Entry entry = entryOfService(json);
        if (entry.m_End >= m_Since)
            take(m_Json ? lineText(json, simulated) : entryLine(entry, m_Screen));
    }

    const RunningService m_Service;
    const bool m_Json;
    const std::uint64_t m_Since;
    const Screen m_Screen;
};

} // namespace

std::unique_ptr<IJournalSource> journalSource(const Options& options, const Screen& screen)
{
    try {
        return std::make_unique<JournalFile>(options, screen);
    } catch (const Failure&) {
        // The service reads its journal also for those who may not open the file.
        std::optional<RunningService> service = runningService(options);
        if (!service)
            throw;
        return std::make_unique<JournalOfService>(*std::move(service), options, screen);
    }
}

} // namespace Host::Cli
