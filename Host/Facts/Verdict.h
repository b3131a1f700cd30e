#pragma once

#include "Facts/Drives.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Host::Cli {

/** What a monitoring system is told. The numbers are the exit codes of its convention. */
enum class Verdict : std::uint8_t
{
    Ok = 0,
    Warning = 1,
    Critical = 2,
    Unknown = 3, ///< nobody knows; also whatever is no verdict
};

/** "OK", "WARNING", "CRITICAL" or "UNKNOWN". */
std::string verdictText(Verdict verdict);

/** Whether `a` is worse than `b`: critical, then warning, then unknown, then OK. */
bool isWorse(Verdict a, Verdict b);

/** The verdict of a code of a health or a drive's state. */
Verdict verdictOfCode(std::uint32_t code);

/** How a drive fares, and why. */
struct Judgement
{
    Verdict m_Verdict = Verdict::Unknown;
    std::string m_Reason; ///< such as "Critical: Media is read-only"
};

/**
 * The judgement at `now`, in UTC milliseconds. A drive that does not answer is a warning at first, and
 * critical after two rounds or 30 seconds.
 */
Judgement judge(const Drive& drive, std::uint64_t now);

} // namespace Host::Cli
