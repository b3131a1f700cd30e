#include "Database/DatabaseFixture.h"

using namespace TestSupport;
using DatabaseORM::compoundCondition_t;
using RaidDataModels::Adapter;
using RaidDataModels::PD;

namespace {

/** Counts the prepared statements that the database keeps, with the help of the system's SQLite. */
class KeptStatements : public DatabaseFixture
{
protected:
    /** The statements of a cycle in which `drives` drives changed. */
    void Cycle(int drives, int cycle) const
    {
        for (int number = 1; number <= drives; ++number) {
            const std::string serial = std::to_string(number);
            (void)DatabaseORM::select(*m_Storage,
                                      compoundCondition_t<Adapter>{{&Adapter::m_AdapterNumber, number},
                                                                   {&Adapter::m_HostName, "localhost"}});
            (void)DatabaseORM::select(*m_Storage, compoundCondition_t<PD>{{&PD::m_HostName, "localhost"},
                                                                          {&PD::m_DriveKey, serial}});
            PD drive = makeDrive(serial);
            drive.m_ID = number;
            drive.m_Temperature = std::to_string(cycle);
            DatabaseORM::update(*m_Storage, drive);
        }
    }

    std::string Count(const std::string& condition)
    {
        return Query("SELECT COUNT(*) FROM sqlite_stmt WHERE " + condition).front();
    }
};

} // namespace

TEST_F(KeptStatements, ServeAnyNumberOfDrivesWhateverTheirTemperature)
{
    constexpr int drives = 240;
    constexpr int cycles = 3;
    for (int cycle = 1; cycle <= cycles; ++cycle)
        Cycle(drives, cycle);
    const std::string runs = "run = " + std::to_string(drives * cycles);
    EXPECT_EQ(Count("sql LIKE 'SELECT * FROM %'"), "2");
    EXPECT_EQ(Count("sql LIKE 'SELECT * FROM %' AND " + runs), "2");
    EXPECT_EQ(Count("sql LIKE 'UPDATE PD %' AND " + runs), "1");
}

TEST_F(KeptStatements, AreThoseThatWereUsedLast)
{
    Query("SELECT 'used again and again'");
    for (int number = 0; number < 200; ++number) {
        Query("SELECT 'once' AS N" + std::to_string(number));
        Query("SELECT 'used again and again'");
    }
    // The fifty include the one that is used again and this one, which counts.
    EXPECT_EQ(Count("sql LIKE 'SELECT ? AS N%'"), "48");
    EXPECT_EQ(Count("sql = 'SELECT ?' AND run = 201"), "1");
}

TEST_F(KeptStatements, AreOneForTheRowsOfATable)
{
    for (int number = 1; number <= 10; ++number)
        DatabaseORM::insert(*m_Storage, makeDrive(std::to_string(number)));
    EXPECT_EQ(Count("sql LIKE 'INSERT %'"), "1");
    EXPECT_EQ(Count("sql LIKE 'INSERT %' AND run = 10"), "1");
    EXPECT_EQ(Count("sql LIKE 'SELECT MAX%' AND run = 10"), "1");
}
