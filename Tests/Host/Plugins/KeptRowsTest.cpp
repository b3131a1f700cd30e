#include "Plugins/KeptRows.h"

#include "Host/Objects.h"
#include "Support/DatabaseError.h"
#include "Support/TemporaryFolder.h"
#include "Support/VirtualClock.h"

#include <Database/Database.h>
#include <DatabaseORM/Models.h>
#include <DatabaseORM/StatementBuilder.h>

#include <stdexcept>

namespace {

using HostTest::DriveObjects;
using HostTest::topologyOf;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class KeptRowsTest : public testing::Test
{
protected:
    KeptRowsTest() { setDatabaseFile(m_Folder.Path() / "Ostrel.db"); }
    ~KeptRowsTest() override { setDatabaseFile({}); }

    static std::vector<std::string> Query(const std::string& sql)
    {
        return getDatabasePointer()->m_Access->query(sql);
    }

    static void Insert(const std::string& serial)
    {
        RaidDataModels::PD drive;
        drive.m_HostName = RaidDataModels::LOCAL_HOST;
        drive.m_DriveKey = serial;
        DatabaseORM::insert(*getDatabasePointer(), drive);
    }

    static Host::ObjectStore Shown(const std::string& serial)
    {
        return Host::ObjectStore(topologyOf({DriveObjects(10, serial, "/dev/nvme0n1")}));
    }

    static std::vector<std::string> Drives() { return Query("SELECT DriveKey FROM PD ORDER BY ID"); }

    static void Break(const std::string& reason)
    {
        TestSupport::databaseError([&] { Query(reason); });
    }

    TestSupport::CTemporaryFolder m_Folder;
    TestSupport::CVirtualClock m_Clock;
    std::vector<std::string> m_Warnings;
    Host::KeptRows m_Rows{[this](const std::string& text) { m_Warnings.push_back(text); }};
};

} // namespace

TEST_F(KeptRowsTest, LoseWhatIsNotShown)
{
    Insert("GONE");
    Insert("STAYS");
    m_Rows.cleanUp([] { return Shown("STAYS"); });
    EXPECT_THAT(Drives(), ElementsAre("STAYS"));
    EXPECT_THAT(m_Warnings, IsEmpty());
}

TEST_F(KeptRowsTest, ThatCameWhileTheHostLookedStay)
{
    Insert("GONE");
    int looks = 0;
    m_Rows.cleanUp([&looks] {
        // The plug-in's worker finds another drive just after the request.
        if (++looks == 1) {
            Insert("FRESH");
            return Shown("OTHER");
        }
        return Shown("FRESH");
    });
    EXPECT_EQ(looks, 2);
    EXPECT_THAT(Drives(), ElementsAre("FRESH"));
}

TEST_F(KeptRowsTest, ThatChangeAllTheTimeAreLeftAlone)
{
    int looks = 0;
    m_Rows.cleanUp([&looks] {
        Insert(std::to_string(++looks));
        return Shown("OTHER");
    });
    EXPECT_THAT(Drives(), SizeIs(static_cast<std::size_t>(looks)));
    EXPECT_THAT(m_Warnings, IsEmpty());
}

TEST_F(KeptRowsTest, StayWhenTheHostCannotLook)
{
    Insert("S1");
    const auto failing = []() -> Host::ObjectStore { throw std::runtime_error("not now"); };
    EXPECT_THROW(m_Rows.cleanUp(failing), std::runtime_error);
    EXPECT_THAT(Drives(), ElementsAre("S1"));
}

TEST_F(KeptRowsTest, ThatFailAreToldOnceWhileItLasts)
{
    for (int poll = 0; poll < 1000; ++poll) {
        Break("refused");
        m_Rows.tellFailure();
        Query("SELECT 1");
        m_Rows.tellFailure();
        Break(poll % 2 == 0 ? "other" : "refused");
        m_Rows.tellFailure();
        m_Clock.Advance(60'000);
    }
    EXPECT_THAT(m_Warnings, ElementsAre(AllOf(HasSubstr("may not have been kept: database '"),
                                              HasSubstr("near \"refused\"")),
                                        HasSubstr("near \"other\"")));
}

TEST_F(KeptRowsTest, ThatFailAgainAfterAnHourAreToldAgain)
{
    Break("refused");
    m_Rows.tellFailure();
    m_Clock.Advance(3'599'999);
    Break("refused");
    m_Rows.tellFailure();
    EXPECT_THAT(m_Warnings, SizeIs(1));
    m_Clock.Advance(3'600'000);
    m_Rows.tellFailure();
    EXPECT_THAT(m_Warnings, SizeIs(1));
    Break("refused");
    m_Rows.tellFailure();
    EXPECT_THAT(m_Warnings, SizeIs(2));
}
