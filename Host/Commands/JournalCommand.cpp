#include "Commands/JournalCommand.h"

#include "Base/Platform.h"
#include "Commands/JournalSource.h"

#include <cstdint>
#include <memory>

namespace Host::Cli {

ExitCode journal(const Options& options, Terminal& terminal)
{
    Platform::TerminationRequest termination;
    const TakeLine print = [&](const std::string& line) { terminal.print(line); };
    const std::unique_ptr<IJournalSource> source = journalSource(options, terminal.screen());
    // Whoever has seen an entry may ask for the end.
    if (options.m_Follow)
        termination.defer();
    const std::uint64_t last = source->read(0, print);
    if (!options.m_Follow)
        return ExitCode::Done;
    if (source->follow(last, print, termination.asked()) == Web::FollowEnd::Service)
        terminal.tell("The service has ended.");
    return ExitCode::Done;
}

} // namespace Host::Cli
