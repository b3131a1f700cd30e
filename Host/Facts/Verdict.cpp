#include "Facts/Verdict.h"

#include "Facts/Silence.h"

#include <PI/StateCode.h>

#include <array>
#include <cstddef>

namespace Host::Cli {
namespace {

/** Of each verdict, the worst last. */
constexpr std::array RANKS = {Verdict::Ok, Verdict::Unknown, Verdict::Warning, Verdict::Critical};

std::size_t rankOf(Verdict verdict)
{
    std::size_t rank = 0;
    while (RANKS.at(rank) != verdict)
        ++rank;
    return rank;
}

Judgement judgeSilent(const DriveAnswer& answer, std::uint64_t now)
{
    constexpr std::uint32_t rounds = 2;
    constexpr std::uint64_t milliseconds = 30000;
    const bool isLong = answer.m_SilentRounds >= rounds ||
                        (answer.m_SilentSince && now >= *answer.m_SilentSince + milliseconds);
    return {isLong ? Verdict::Critical : Verdict::Warning, silenceReason(answer, now)};
}

} // namespace

std::string verdictText(Verdict verdict)
{
    constexpr std::array texts = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};
    return texts.at(static_cast<std::size_t>(verdict));
}

bool isWorse(Verdict a, Verdict b)
{
    return rankOf(a) > rankOf(b);
}

Verdict verdictOfCode(std::uint32_t code)
{
    switch (code) {
    case PI::HEALTH_HEALTHY:
    case PI::DRIVE_OPERATIONAL:
        return Verdict::Ok;
    case PI::HEALTH_DEGRADED:
    case PI::DRIVE_WARNING:
        return Verdict::Warning;
    case PI::HEALTH_CRITICAL:
        return Verdict::Critical;
    default:
        return Verdict::Unknown;
    }
}

Judgement judge(const Drive& drive, std::uint64_t now)
{
    if (isSilent(drive))
        return judgeSilent(*drive.m_Answer, now);
    if (!drive.m_Health)
        return {Verdict::Unknown, "its health is not reported"};
    if (!drive.m_Health->m_Code)
        return {Verdict::Unknown, "its health log was not read"};
    std::string reason = drive.m_Health->m_Text;
    for (std::size_t i = 0; i < drive.m_Reasons.size(); ++i)
        reason += (i == 0 ? ": " : ", ") + drive.m_Reasons[i].m_Text;
    return {verdictOfCode(*drive.m_Health->m_Code), reason};
}

} // namespace Host::Cli
