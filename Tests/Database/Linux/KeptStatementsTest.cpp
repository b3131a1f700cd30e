#include "Database/DatabaseFixture.h"

using namespace TestSupport;
using DatabaseORM::compoundCondition_t;
using RaidDataModels::Adapter;
using RaidDataModels::PD;

namespace {

/** What the database keeps prepared, as the system's SQLite tells. */
class KeptStatements : public DatabaseFixture
{
protected:
    /** What a cycle does with each of `drives` drives that changed. */
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

TEST_F(KeptStatements, AreThoseOfHundredsOfDrivesWhateverTheirTemperature)
{
    constexpr int drives = 240;
    for (int cycle = 1; cycle <= 3; ++cycle)
        Cycle(drives, cycle);
    EXPECT_EQ(Count("run = 3 AND sql LIKE 'SELECT * FROM %'"), std::to_string(2 * drives));
}

TEST_F(KeptStatements, AreNoneThatInsertARow)
{
    for (int number = 1; number <= 10; ++number)
        DatabaseORM::insert(*m_Storage, makeDrive(std::to_string(number)));
    EXPECT_EQ(Count("sql LIKE 'INSERT %'"), "0");
    EXPECT_EQ(Count("sql LIKE 'SELECT MAX%' AND run = 10"), "1");
}
