#pragma once

#include "Facts/ServiceFigures.h"
#include "Facts/Snapshot.h"
#include "Journal/NumberedEntry.h"

#include <PI/Property.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Host::Web {

/** Gets the property as it is after it was set, or null and the reason why it was not set. */
using WhenSet = std::function<void(const PI::CProperty* property, std::exception_ptr failure)>;

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

    /** Sets a property of the plug-in later, on the thread that may do so, and then calls `done` there. */
    virtual void set(const std::string& object, const std::string& property, const std::string& value,
                     WhenSet done) = 0;
};

} // namespace Host::Web
