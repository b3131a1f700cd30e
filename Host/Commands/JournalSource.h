#pragma once

#include "Commands/CommandLine.h"
#include "Terminal/Screen.h"
#include "Web/Client.h"

#include <TLX/Event.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace Host::Cli {

/** An entry of the journal, as `journal` prints it. */
struct JournalLine
{
    std::uint64_t m_Number = 0;
    std::uint64_t m_Time = 0; ///< of the look that found it, in milliseconds since 1970
    std::string m_Text;       ///< with a line end
};

using TakeLine = std::function<void(const JournalLine&)>;

/** Where `journal` gets its entries. */
class IJournalSource
{
public:
    virtual ~IJournalSource() = default;

    /** Calls `take` with each entry above the number `after`, in order. Throws `Failure`. */
    virtual void read(std::uint64_t after, const TakeLine& take) = 0;

    /**
     * The same with each entry that comes, until `stop` is signalled or the source ends. `take` may be called
     * on another thread. Throws `Failure`, and what `take` throws.
     */
    virtual Web::FollowEnd follow(std::uint64_t after, const TakeLine& take,
                                  TLX::Threading::CEvent& stop) = 0;
};

/**
 * The file in the data folder. If it cannot be read, the service that runs. Throws the `Failure` of the file
 * when there is no service, either.
 */
std::unique_ptr<IJournalSource> journalSource(const Options& options, const Screen& screen);

} // namespace Host::Cli
