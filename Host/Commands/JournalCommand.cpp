#include "Commands/JournalCommand.h"

#include "Base/Platform.h"
#include "Commands/JournalSource.h"

#include <cstdint>
#include <memory>

namespace Host::Cli {

ExitCode journal(const Options& options, Terminal& terminal)
{
    Platform::TerminationRequest termination;
    std::uint64_t last = 0;
    const TakeLine print = [&](const JournalLine& line) {
        last = line.m_Number;
        if (line.m_Time >= options.m_Since.value_or(0))
            terminal.print(line.m_Text);
    };
    const std::unique_ptr<IJournalSource> source = journalSource(options, terminal.screen());
    source->read(0, print);
    if (!options.m_Follow)
        return ExitCode::Done;
    termination.defer();
    if (source->follow(last, print, termination.asked()) == Web::FollowEnd::Service)
        terminal.tell("The service has ended.");
    return ExitCode::Done;
}

} // namespace Host::Cli
