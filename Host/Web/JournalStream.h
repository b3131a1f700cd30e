#pragma once

#include "Web/Exchange.h"
#include "Web/ServiceView.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Host::Web {

/**
 * At most `limit` entries with numbers above `after`, in order. All from the first one when the journal does
 * not have the entry `after`: then a new journal took the place of that in which it was. Throws `Failure`.
 */
std::vector<Journal::NumberedEntry> entriesAfter(const IServiceView& view, std::uint64_t after,
                                                 std::size_t limit);

/** The journal's entries, in order, as server-sent events whose identifiers are the entries' numbers. */
class JournalStream : public IEventStream
{
public:
    /** Begins above the number `after`. Keeps a reference to `view`. */
    JournalStream(const IServiceView& view, std::uint64_t after)
        : m_View(view), m_Simulated(view.figures().m_Simulated), m_After(after)
    {}

    std::string next() override;

private:
    const IServiceView& m_View;
    const bool m_Simulated;
    std::uint64_t m_After;
};

} // namespace Host::Web
