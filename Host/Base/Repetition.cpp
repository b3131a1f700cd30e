#include "Base/Repetition.h"

#include <TLX/Clock.h>

namespace Host {
namespace {

constexpr std::uint64_t HOUR = 3'600'000; // milliseconds

} // namespace

bool Repetition::isNew(const std::string& message)
{
    const std::uint64_t now = TLX::Misc::monotonic();
    std::erase_if(m_Seen, [now](const auto& seen) { return now - seen.second >= HOUR; });
    return m_Seen.insert_or_assign(message, now).second;
}

} // namespace Host
