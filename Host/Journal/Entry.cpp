#include "Journal/Entry.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Host::Journal {
namespace {

// In the order of the enumerators.

constexpr std::array<std::string_view, 27> KINDS = {
    "drive-added",
    "drive-removed",
    "does-not-answer",
    "spare-low",
    "over-temperature",
    "over-critical-temperature",
    "reliability-degraded",
    "read-only",
    "memory-backup-failed",
    "temperature-margin",
    "below-new",
    "spare-fell",
    "wear-grew",
    "own-wear-grew",
    "media-errors-grew",
    "error-log-grew",
    "firmware-changed",
    "capacity-changed",
    "block-size-changed",
    "moved",
    "power-lost",
    "counter-went-back",
    "worked-elsewhere",
    "clock-stepped",
    "machine-restarted",
    "service-started",
    "service-ended",
};
static_assert(KINDS.size() == static_cast<std::size_t>(Kind::ServiceEnded) + 1);

constexpr std::array<std::string_view, 5> PHASES = {"change", "present", "began", "ended", "remains"};
static_assert(PHASES.size() == static_cast<std::size_t>(Phase::Remains) + 1);

template<typename Value, std::size_t Count>
std::optional<Value> byName(const std::array<std::string_view, Count>& words, std::string_view word)
{
    const auto found = std::find(words.begin(), words.end(), word);
    return found != words.end() ? std::optional(static_cast<Value>(found - words.begin())) : std::nullopt;
}

} // namespace

std::span<const std::string_view> kindNames()
{
    return KINDS;
}

std::string_view kindName(Kind kind)
{
    return KINDS[static_cast<std::size_t>(kind)];
}

std::optional<Kind> kindByName(std::string_view word)
{
    return byName<Kind>(KINDS, word);
}

std::string_view phaseName(Phase phase)
{
    return PHASES[static_cast<std::size_t>(phase)];
}

std::optional<Phase> phaseByName(std::string_view word)
{
    return byName<Phase>(PHASES, word);
}

} // namespace Host::Journal
