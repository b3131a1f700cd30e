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

/** Takes an entry of the journal, as `journal` prints it, with a line end. */
using TakeLine = std::function<void(const std::string& line)>;

/** Where `journal` gets its entries. Those before the time that the user names are left out. */
class IJournalSource
{
public:
    virtual ~IJournalSource() = default;

    /**
     * Calls `take` with each entry above the number `after`, in order. Returns the number up to which the
     * journal was read. Throws `Failure`.
     */
    virtual std::uint64_t read(std::uint64_t after, const TakeLine& take) = 0;

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
