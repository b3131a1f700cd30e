#include "ScanFixture.h"
#include "Support/RowFixture.h"

#include <TLX/WaitResult.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <utility>

using namespace TestSupport;
using NAMESPACE_Ostrel::CNVMeAdapter;
using NAMESPACE_Ostrel::CNVMePhysicalDrive;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct CFileFirst
{
    CDatabaseFile m_File;
};

/** The rows that the worker's scans leave in the database. */
class UpdateSystemRows : protected CFileFirst, public CScanFixture
{
protected:
    using Values = std::vector<std::string>;

    UpdateSystemRows() { EXPECT_EQ(m_Plugin.m_EventsLock.Init(), TLX::Threading::WaitResult::Taken); }

    /** Publishes the machine's present drives as the first inventory and writes their rows. */
    void PublishFirst()
    {
        Scan();
        Publish();
        for (const CNVMeAdapter& adapter : m_Plugin.m_Adapters)
            ASSERT_EQ(m_Plugin.InsertObjectToDatabase(adapter), 0U);
        for (const CNVMePhysicalDrive& drive : m_Plugin.m_PhysicalDrives)
            ASSERT_EQ(m_Plugin.InsertObjectToDatabase(drive), 0U);
    }

    /** Scans again and merges the result. */
    void Update()
    {
        Scan(false);
        m_Plugin.UpdateSystem(m_Adapters, m_Drives);
    }

    /** In the order of serial numbers, which is also the order of the drives' buses. */
    Values Adapters() { return m_File.Query("SELECT SerialNumber FROM Adapter ORDER BY SerialNumber"); }
    /** The same, each with the bus in its row. */
    Values Places()
    {
        return m_File.Query("SELECT SerialNumber || '@' || PciBus FROM Adapter ORDER BY SerialNumber");
    }
    Values Drives() { return m_File.Query("SELECT DriveKey FROM PD ORDER BY DriveKey"); }
};

/** Passes statements on. The next one that begins with `beginning` fails before that, by `fail`. */
class CFailingOnce : public DatabaseWrapper::DatabaseDAO
{
public:
    CFailingOnce(std::shared_ptr<DatabaseWrapper::DatabaseDAO> database, std::string beginning,
                 std::function<void()> fail)
        : m_Database(std::move(database)), m_Beginning(std::move(beginning)), m_Fail(std::move(fail))
    {}

    std::vector<std::string> query(const std::string& sql) override
    {
        if (m_Fail && sql.starts_with(m_Beginning))
            std::exchange(m_Fail, nullptr)();
        return m_Database->query(sql);
    }

private:
    std::shared_ptr<DatabaseWrapper::DatabaseDAO> m_Database;
    std::string m_Beginning;
    std::function<void()> m_Fail;
};

/** All ways in which an operation on a row can fail. */
class UpdateSystemRowFaults : public UpdateSystemRows, public testing::WithParamInterface<void (*)()>
{
protected:
    /** Makes the next statement fail that begins with this text. */
    void FailOnce(const std::string& beginning)
    {
        auto& access = m_Plugin.m_Database->m_Access;
        access = std::make_shared<CFailingOnce>(access, beginning, GetParam());
    }
};

INSTANTIATE_TEST_SUITE_P(Faults, UpdateSystemRowFaults,
                         testing::Values([] { throw DBEXCEPTION::DatabaseException("disk full"); },
                                         [] { throw std::bad_alloc(); }, [] { throw 7; }));

} // namespace

TEST_F(UpdateSystemRows, OfWhatComesAppearAndOfWhatGoesVanish)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    PublishFirst();
    m_Fakes.Remove("/dev/nvme1n1");
    m_Fakes.Add(CFakeDrive(3));
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("SN2", "SN3"));
    EXPECT_THAT(Drives(), ElementsAre("SN2", "SN3"));
    m_Fakes.Remove("/dev/nvme2n1");
    m_Fakes.Remove("/dev/nvme3n1");
    Update();
    EXPECT_THAT(Adapters(), IsEmpty());
    EXPECT_THAT(Drives(), IsEmpty());
}

TEST_F(UpdateSystemRows, OfASwapInOneSlotAreTheNewcomers)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    PublishFirst();
    m_Fakes.At(0).Serial("NEW");
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("NEW", "SN2"));
    EXPECT_THAT(Drives(), ElementsAre("NEW", "SN2"));
}

TEST_F(UpdateSystemRows, OfANewcomerAndOfTheFormerDriveThatHasMovedToAnotherSlotAreThere)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).m_Location->m_Bus = 7;
    m_Fakes.Add(CFakeDrive(2)).Serial("NEW").m_Location->m_Bus = 1;
    Update();
    EXPECT_THAT(Places(), ElementsAre("NEW@1", "SN1@7"));
    EXPECT_THAT(Drives(), ElementsAre("NEW", "SN1"));
}

// The adapter that moved is not new, so the row of the former adapter was not replaced.
TEST_F(UpdateSystemRows, OfARemovedAdapterVanishEvenWhenAnotherHasMovedIntoItsSlot)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    PublishFirst();
    m_Fakes.At(1).m_Location = m_Fakes.At(0).m_Location;
    m_Fakes.Remove("/dev/nvme1n1");
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("SN2"));
    EXPECT_THAT(Drives(), ElementsAre("SN2"));
}

TEST_F(UpdateSystemRows, OfADriveStayWhenAnotherInASlotOfTheSameNumberGoes)
{
    m_Fakes.Add(CFakeDrive(1)).m_Location->m_Segment = 0x10000;
    m_Fakes.Add(CFakeDrive(2)).m_Location = m_Fakes.At(0).m_Location;
    m_Fakes.At(1).m_Location->m_Segment = 0x10001;
    PublishFirst();
    ASSERT_THAT(Adapters(), ElementsAre("SN2"));
    m_Fakes.Remove("/dev/nvme1n1");
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("SN2"));
    EXPECT_THAT(Drives(), testing::Contains("SN2"));
}

TEST_F(UpdateSystemRows, OfOddSerialNumbersComeAndGoLikeAnyOther)
{
    m_Fakes.Add(CFakeDrive(9));
    PublishFirst();
    std::uint32_t number = 0;
    for (const char* serial : {"NULL", "", "TWIN", "TWIN", "x');DROP TABLE PD;--"})
        m_Fakes.Add(CFakeDrive(++number)).Serial(serial);
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("", "NULL", "SN9", "TWIN", "TWIN", "x');DROP TABLE PD;--"));
    EXPECT_THAT(Drives(), ElementsAre("", "NULL", "SN9", "TWIN", "x');DROP TABLE PD;--"));
    for (; number > 0; --number)
        m_Fakes.Remove("/dev/nvme" + std::to_string(number) + "n1");
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("SN9"));
    EXPECT_THAT(Drives(), ElementsAre("SN9"));
}

TEST_F(UpdateSystemRows, ShowAChangeAtTheNextOne)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    const std::string flags = "SELECT WarningFlags FROM Adapter; SELECT Temperature FROM PD";
    m_Fakes.At(0).Warning(4).Kelvin(310);
    Update();
    EXPECT_THAT(m_File.Query(flags), ElementsAre("0", "25"));
    m_Fakes.At(0).Warning(0).Kelvin(311);
    Update();
    EXPECT_THAT(m_File.Query(flags), ElementsAre("4", "37"));
}

TEST_F(UpdateSystemRows, OfADriveThatMovedFollowIt)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).m_Location->m_Bus = 7;
    Update();
    EXPECT_THAT(Places(), ElementsAre("SN1@7"));
    EXPECT_THAT(Drives(), ElementsAre("SN1"));
}

TEST_F(UpdateSystemRows, OfDrivesThatChangedSlotsFollowThem)
{
    for (std::uint32_t bus = 1; bus <= 3; ++bus)
        m_Fakes.Add(CFakeDrive(bus));
    PublishFirst();
    for (std::size_t drive = 0; drive < 3; ++drive)
        m_Fakes.At(drive).m_Location->m_Bus = static_cast<std::uint32_t>(drive + 1) % 3 + 1;
    Update();
    EXPECT_THAT(Places(), ElementsAre("SN1@2", "SN2@3", "SN3@1"));
    EXPECT_THAT(Drives(), ElementsAre("SN1", "SN2", "SN3"));
}

TEST_F(UpdateSystemRows, OfADriveThatTookTheSlotOfOneThatWentAreItsOwn)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    PublishFirst();
    m_Fakes.At(1).m_Location = m_Fakes.At(0).m_Location;
    m_Fakes.Remove("/dev/nvme1n1");
    Update();
    EXPECT_THAT(Places(), ElementsAre("SN2@1"));
    EXPECT_THAT(Drives(), ElementsAre("SN2"));
}

TEST_F(UpdateSystemRows, AreNotWrittenAnewWithoutNeed)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2)).Serial("TWIN");
    m_Fakes.Add(CFakeDrive(3)).Serial("TWIN");
    PublishFirst();
    auto counter = std::make_shared<CStatementCounter>(m_Plugin.m_Database->m_Access);
    m_Plugin.m_Database->m_Access = counter;
    Update();
    m_Fakes.At(0).Kelvin(320);
    Update();
    EXPECT_EQ(counter->Count("INSERT"), 0U);
}

TEST_F(UpdateSystemRows, AreTriedAnewOnceAScanUntilAllAreThere)
{
    for (std::uint32_t bus = 1; bus <= 3; ++bus)
        m_Fakes.Add(CFakeDrive(bus));
    const auto healthy = m_Plugin.m_Database->m_Access;
    auto counter = std::make_shared<CStatementCounter>(
        std::make_shared<CThrowingDatabase<DBEXCEPTION::DatabaseException>>(
            DBEXCEPTION::DatabaseException("locked")));
    m_Plugin.m_Database->m_Access = counter;
    Update();
    const std::size_t first = counter->Statements().size();
    Update();
    EXPECT_EQ(counter->Statements().size(), first + 2) << "the plug-in's own row, and one attempt";
    Update();
    EXPECT_EQ(counter->Statements().size(), first + 4);
    EXPECT_THAT(Adapters(), IsEmpty());

    m_Plugin.m_Database->m_Access = healthy;
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("SN1", "SN2", "SN3"));
    EXPECT_THAT(Drives(), ElementsAre("SN1", "SN2", "SN3"));
    EXPECT_THAT(m_File.Query("SELECT Name FROM Plugin"), ElementsAre("NVMe-Plugin"));
}

TEST_P(UpdateSystemRowFaults, AnInsertThatFailedStopsNoOtherAndIsMendedByTheNextScan)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.Add(CFakeDrive(2));
    m_Fakes.Add(CFakeDrive(3));
    FailOnce("INSERT INTO Adapter");
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("SN1", "SN3"));
    EXPECT_THAT(Drives(), ElementsAre("SN1", "SN2", "SN3"));
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("SN1", "SN2", "SN3"));
    EXPECT_THAT(Drives(), ElementsAre("SN1", "SN2", "SN3"));
}

TEST_P(UpdateSystemRowFaults, ADeleteThatFailedIsMendedByTheNextScan)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    PublishFirst();
    m_Fakes.Remove("/dev/nvme1n1");
    FailOnce("DELETE FROM Adapter");
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("SN1", "SN2"));
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("SN2"));
    EXPECT_THAT(Drives(), ElementsAre("SN2"));
}

TEST_P(UpdateSystemRowFaults, AnUpdateThatFailedIsMendedByTheNextScan)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).Warning(4);
    FailOnce("UPDATE Adapter");
    Update();
    Update();
    EXPECT_THAT(m_File.Query("SELECT WarningFlags FROM Adapter"), ElementsAre("4"));
}

TEST_P(UpdateSystemRowFaults, AMoveWhoseRowsFailedIsMendedByTheNextScan)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).m_Location->m_Bus = 7;
    FailOnce("DELETE FROM Adapter");
    Update();
    Update();
    EXPECT_THAT(Places(), ElementsAre("SN1@7"));
    EXPECT_THAT(Drives(), ElementsAre("SN1"));
}

// The database changes nothing of what a host sees.
TEST_P(UpdateSystemRowFaults, NeitherListsNorEventsNoticeABrokenDatabase)
{
    const auto run = [](bool broken) {
        CPluginUnderTest plugin;
        EXPECT_EQ(plugin.m_EventsLock.Init(), TLX::Threading::WaitResult::Taken);
        CFakeDrives fakes;
        const auto scan = [&] {
            std::vector<CNVMeAdapter> adapters;
            std::vector<CNVMePhysicalDrive> drives;
            plugin.m_NVMeDevices.scan();
            (void)plugin.m_NVMeDevices.query(&NAMESPACE_Ostrel::NVMeDevice::queryIdentifyController);
            plugin.ScanSystem(adapters, drives, false);
            return plugin.UpdateSystem(adapters, drives);
        };
        std::vector<std::string> seen;
        if (broken) {
            class CBroken : public DatabaseWrapper::DatabaseDAO
            {
            public:
                explicit CBroken(void (*fail)()) : m_Fail(fail) {}
                std::vector<std::string> query(const std::string&) override
                {
                    m_Fail();
                    return {};
                }

            private:
                void (*m_Fail)();
            };
            plugin.m_Database->m_Access = std::make_shared<CBroken>(GetParam());
        }
        const auto look = [&](std::uint32_t result) {
            seen.push_back("result " + std::to_string(result));
            for (const PI::CEvent& event : plugin.m_Events)
                seen.push_back("event " + std::to_string(event.m_Id));
            for (const CNVMeAdapter& adapter : plugin.m_Adapters)
                seen.push_back("adapter " + adapter.m_SerialNumber + ' ' +
                               std::to_string(adapter.m_WarningFlags));
            for (const CNVMePhysicalDrive& drive : plugin.m_PhysicalDrives)
                seen.push_back("drive " + drive.m_SerialNumber);
            seen.push_back("children " + std::to_string(plugin.m_Plugin.m_Children.size()) + " count " +
                           std::to_string(plugin.m_Plugin.m_UpdateCount));
        };
        fakes.Add(CFakeDrive(1));
        fakes.Add(CFakeDrive(2));
        look(scan());
        fakes.At(0).Warning(4);
        look(scan());
        fakes.Remove("/dev/nvme2n1");
        look(scan());
        return seen;
    };
    const std::vector<std::string> healthy = run(false);
    EXPECT_THAT(healthy, testing::Contains("event 11094"));
    EXPECT_EQ(run(true), healthy);
}
