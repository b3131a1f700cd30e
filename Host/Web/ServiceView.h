#pragma once

#include "Facts/ServiceFigures.h"
#include "Facts/Snapshot.h"
#include "Journal/NumberedEntry.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Host::Web {

/** What the routes see of the service. Nothing here waits for a drive or a plug-in. Safe from any thread. */
class IServiceView
{
public:
    virtual ~IServiceView() = default;

    /** After the last round. Never null; it is empty before the first round. */
    virtual std::shared_ptr<const Cli::Snapshot> snapshot() const = 0;

    virtual Cli::ServiceFigures figures() const = 0;

    /** At most `limit` entries with numbers above `after`, in order. Throws `Failure`. */
    virtual std::vector<Journal::NumberedEntry> journal(std::uint64_t after, std::size_t limit) const = 0;

    /**
     * Sets a property of the plug-in later, on the thread that may do so, and then calls `done` there with
     * the text of the value in force, or with a failure as an exception.
     */
    virtual void set(const std::string& object, const std::string& property, const std::string& value,
                     std::function<void(const std::string& text, std::exception_ptr failure)> done) = 0;
};

} // namespace Host::Web
