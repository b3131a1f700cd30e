#include "Facts/ServiceVerdict.h"

#include <string>

namespace Host::Cli {
namespace {

/** Makes the verdict at least as bad as `verdict`, and puts its reason first. */
void worsen(Judgement& judgement, Verdict verdict, const std::string& reason)
{
    if (isWorse(verdict, judgement.m_Verdict))
        judgement.m_Verdict = verdict;
    judgement.m_Reason = reason + (judgement.m_Reason.empty() ? "" : "; ") + judgement.m_Reason;
}

Judgement judgeDrives(const std::vector<DriveCheck>& drives, const Snapshot& snapshot)
{
    if (!drives.empty())
        return {worstOf(drives), messageOf(drives)};
    return {Verdict::Unknown, snapshot.m_Round == 0 ? "the drives were not read yet" : "there are no drives"};
}

} // namespace

Judgement judgeService(const std::vector<DriveCheck>& drives, const Snapshot& snapshot,
                       const ServiceFigures& figures)
{
    // Without drives, the trouble says it all.
    Judgement judgement = drives.empty() && !figures.m_Trouble.empty()
                              ? Judgement{Verdict::Unknown, std::string()}
                              : judgeDrives(drives, snapshot);
    if (!figures.m_Trouble.empty())
        worsen(judgement, Verdict::Unknown, figures.m_Trouble);
    if (!figures.m_JournalFailure.empty())
        worsen(judgement, Verdict::Warning, "the journal cannot be written: " + figures.m_JournalFailure);
    return judgement;
}

} // namespace Host::Cli
