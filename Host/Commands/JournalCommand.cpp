#include "Commands/JournalCommand.h"

#include "Base/Platform.h"
#include "Documents/EntryJson.h"
#include "Documents/Json.h"
#include "Journal/Reader.h"
#include "Journal/Store.h"
#include "Terminal/EventLine.h"

#include <TLX/WaitInterval.h>
#include <TLX/WaitResult.h>
#include <TLX/Waiter.h>

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>

namespace Host::Cli {
namespace {

/** Prints the entries of a journal in order. */
class Print
{
public:
    Print(const Options& options, Terminal& terminal)
        : m_Options(options),
          m_Terminal(terminal),
          m_Reader(Journal::serviceFile(options.m_Data.value_or(Platform::defaultDataFolder())))
    {}

    /** Prints what came since the last call. */
    void goOn()
    {
        constexpr std::size_t some = 1000;
        // A new journal in the same place begins anew.
        if (m_Reader.lastNumber() < m_Last)
            m_Last = 0;
        for (;;) {
            const std::vector<Journal::NumberedEntry> entries = m_Reader.read(m_Last, some);
            for (const Journal::NumberedEntry& entry : entries)
                if (entry.m_Entry.m_End >= m_Options.m_Since.value_or(0))
                    print(entry);
            if (entries.empty())
                return;
            m_Last = entries.back().m_Number;
        }
    }

private:
    void print(const Journal::NumberedEntry& entry) const
    {
        m_Terminal.print(m_Options.m_Json ? lineText(numberedEntryJson(entry), m_Options.m_Fleet.has_value())
                                          : entryLine(entry.m_Entry, m_Terminal.screen()));
    }

    const Options& m_Options;
    Terminal& m_Terminal;
    Journal::Reader m_Reader;
    std::uint64_t m_Last = 0; ///< number of the last entry that was read
};

} // namespace

ExitCode journal(const Options& options, Terminal& terminal)
{
    constexpr std::uint32_t pause = 1000; // milliseconds; nobody announces a new entry
    Platform::TerminationRequest termination;
    Print print(options, terminal);
    print.goOn();
    if (!options.m_Follow)
        return ExitCode::Done;
    termination.defer();
    TLX::Threading::CWaiter waiter{&termination.asked()};
    while (waiter.Wait(TLX::Threading::CWaitInterval(pause)) == TLX::Threading::WaitResult::TimedOut)
        print.goOn();
    return ExitCode::Done;
}

} // namespace Host::Cli
