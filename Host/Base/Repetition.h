#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace Host {

/** Tells repeated messages from new ones. For one thread at a time. */
class Repetition
{
public:
    /** Whether `message` was not seen for an hour. It counts as seen from now on. */
    bool isNew(const std::string& message);

private:
    std::map<std::string, std::uint64_t> m_Seen; ///< when each was seen last, on the monotonic clock
};

} // namespace Host
