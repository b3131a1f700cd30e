#include "DatabaseFixture.h"

using namespace TestSupport;
using DatabaseORM::condition_t;
using RaidDataModels::Adapter;
using RaidDataModels::PD;
using testing::ElementsAre;

namespace {

class Identifiers : public DatabaseFixture
{
protected:
    Values Drives() { return Query("SELECT ID, DriveKey FROM PD ORDER BY ID"); }
};

} // namespace

TEST_F(Identifiers, AreUsedUpByReplacedRows)
{
    for (int start = 0; start < 3; ++start)
        DatabaseORM::insert(*m_Storage, makeDrive("S1"));
    EXPECT_THAT(Drives(), ElementsAre("3", "S1"));
}

TEST_F(Identifiers, StartAgainFromOneWhenHalfAreUsedUp)
{
    for (const char* serial : {"S1", "S2", "S3"})
        DatabaseORM::insert(*m_Storage, makeDrive(serial));
    Query("UPDATE PD SET ID = 1073741824 WHERE DriveKey = 'S1';"
          "UPDATE PD SET ID = 9000000000 WHERE DriveKey = 'S2';");
    Reopen();
    EXPECT_THAT(Drives(), ElementsAre("1", "S3", "2", "S1", "3", "S2"));
    EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S4")), 4);
    EXPECT_EQ(DatabaseORM::select(*m_Storage, condition_t(&PD::m_DriveKey, "S2")).at(0).m_ID, 3);
    EXPECT_THAT(Query("PRAGMA integrity_check"), ElementsAre("ok"));
}

TEST_F(Identifiers, StartAgainFromOneWhateverSomebodyHasMadeOfThem)
{
    for (const char* serial : {"S1", "S2", "S3", "S4"})
        DatabaseORM::insert(*m_Storage, makeDrive(serial));
    Query("UPDATE PD SET ID = 2000000000 WHERE DriveKey = 'S1'; UPDATE PD SET ID = 0 WHERE DriveKey = 'S2';"
          "UPDATE PD SET ID = -1 WHERE DriveKey = 'S3'; UPDATE PD SET ID = -2 WHERE DriveKey = 'S4';");
    Reopen();
    EXPECT_THAT(Drives(), ElementsAre("1", "S4", "2", "S3", "3", "S2", "4", "S1"));
}

TEST_F(Identifiers, StayWhileThereAreEnough)
{
    DatabaseORM::insert(*m_Storage, makeDrive("S1"));
    Query("UPDATE PD SET ID = 1073741823");
    Reopen();
    EXPECT_THAT(Drives(), ElementsAre("1073741823", "S1"));
}

TEST_F(Identifiers, OfOneTableStartAgainAlone)
{
    for (const std::int32_t number : {1, 2}) {
        DatabaseORM::insert(*m_Storage, makeAdapter(number, "S" + std::to_string(number)));
        DatabaseORM::insert(*m_Storage, makeDrive("S" + std::to_string(number)));
    }
    Query("UPDATE Adapter SET ID = ID + 2000000000; UPDATE PD SET ID = ID + 100;");
    Reopen();
    EXPECT_THAT(Query("SELECT ID, SerialNumber FROM Adapter ORDER BY ID"), ElementsAre("1", "S1", "2", "S2"));
    EXPECT_THAT(Drives(), ElementsAre("101", "S1", "102", "S2"));
    DatabaseORM::remove(*m_Storage, condition_t(&Adapter::m_AdapterNumber, 1));
    EXPECT_THAT(Drives(), ElementsAre("102", "S2"));
}

TEST_F(Identifiers, StartAgainFromOneAtTheVeryEnds)
{
    for (const char* serial : {"S1", "S2", "S3", "S4", "S5"})
        DatabaseORM::insert(*m_Storage, makeDrive(serial));
    Query("UPDATE PD SET ID = -9223372036854775807 - 1 WHERE DriveKey = 'S5';"
          "UPDATE PD SET ID = -9223372036854775807 WHERE DriveKey = 'S1';"
          "UPDATE PD SET ID = 9223372036854775807 WHERE DriveKey = 'S2';");
    Reopen();
    EXPECT_THAT(Drives(), ElementsAre("1", "S5", "2", "S1", "3", "S3", "4", "S4", "5", "S2"));
}

TEST_F(Identifiers, StartAgainFromOneWhenOneIsTooLowToBeRead)
{
    for (const char* serial : {"S1", "S2"})
        DatabaseORM::insert(*m_Storage, makeDrive(serial));
    Query("UPDATE PD SET ID = -9000000000 WHERE DriveKey = 'S2'");
    Reopen();
    EXPECT_THAT(Drives(), ElementsAre("1", "S2", "2", "S1"));
}
