#include "Facts/ServiceVerdict.h"

#include <gtest/gtest.h>

namespace {

using namespace Host::Cli;

const Snapshot BEFORE_ALL_ROUNDS{Host::ObjectStore({}), 0, 0};
const Snapshot AFTER_A_ROUND{Host::ObjectStore({}), 1, 1};

DriveCheck checkOf(const std::string& key, Verdict verdict, const std::string& reason)
{
    DriveCheck check;
    check.m_Drive = std::make_shared<const Drive>();
    check.m_Key = key;
    check.m_Judgement = {verdict, reason};
    return check;
}

void expect(const Judgement& judgement, Verdict verdict, const std::string& reason)
{
    EXPECT_EQ(judgement.m_Verdict, verdict);
    EXPECT_EQ(judgement.m_Reason, reason);
}

TEST(ServiceVerdict, IsThatOfTheDrives)
{
    expect(judgeService({checkOf("A", Verdict::Ok, ""), checkOf("B", Verdict::Critical, "bad")},
                        AFTER_A_ROUND, {}),
           Verdict::Critical, "B: bad; 1 of 2 drives healthy");
}

TEST(ServiceVerdict, IsUnknownWithoutDrives)
{
    expect(judgeService({}, BEFORE_ALL_ROUNDS, {}), Verdict::Unknown, "the drives were not read yet");
    expect(judgeService({}, AFTER_A_ROUND, {}), Verdict::Unknown, "there are no drives");
    ServiceFigures figures;
    figures.m_Trouble = "no plug-in";
    expect(judgeService({}, AFTER_A_ROUND, figures), Verdict::Unknown, "no plug-in");
}

TEST(ServiceVerdict, IsUnknownWhenNobodyWatchesTheDrives)
{
    ServiceFigures figures;
    figures.m_Trouble = "no plug-in";
    expect(judgeService({checkOf("A", Verdict::Ok, "")}, AFTER_A_ROUND, figures), Verdict::Unknown,
           "no plug-in; 1 drive healthy");
    expect(judgeService({checkOf("A", Verdict::Warning, "hot")}, AFTER_A_ROUND, figures), Verdict::Warning,
           "no plug-in; A: hot; 0 of 1 drive healthy");
}

TEST(ServiceVerdict, WarnsOfAJournalThatCannotBeWritten)
{
    ServiceFigures figures;
    figures.m_JournalFailure = "disk full";
    expect(judgeService({checkOf("A", Verdict::Ok, "")}, AFTER_A_ROUND, figures), Verdict::Warning,
           "the journal cannot be written: disk full; 1 drive healthy");
    expect(judgeService({checkOf("A", Verdict::Critical, "bad")}, AFTER_A_ROUND, figures), Verdict::Critical,
           "the journal cannot be written: disk full; A: bad; 0 of 1 drive healthy");
}

} // namespace
