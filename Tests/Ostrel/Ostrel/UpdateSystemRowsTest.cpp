#include "ScanFixture.h"
#include "Support/RowFixture.h"

#include <TLX/WaitResult.h>

#include <string>

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

/** What the scans of the worker leave in the database. */
class UpdateSystemRows : protected CFileFirst, public CScanFixture
{
protected:
    using Values = std::vector<std::string>;

    UpdateSystemRows() { EXPECT_EQ(m_Plugin.m_EventsLock.Init(), TLX::Threading::WaitResult::Taken); }

    /** The machine's drives as they are now become the first inventory, rows included. */
    void PublishFirst()
    {
        Scan();
        Publish();
        for (const CNVMeAdapter& adapter : m_Plugin.m_Adapters)
            ASSERT_EQ(m_Plugin.InsertObjectToDatabase(adapter), 0U);
        for (const CNVMePhysicalDrive& drive : m_Plugin.m_PhysicalDrives)
            ASSERT_EQ(m_Plugin.InsertObjectToDatabase(drive), 0U);
    }

    /** A later scan. */
    void Update()
    {
        Scan(false);
        m_Plugin.UpdateSystem(m_Adapters, m_Drives);
    }

    /** In order of serial number, which is that of the drives' buses. */
    Values Adapters() { return m_File.Query("SELECT SerialNumber FROM Adapter ORDER BY SerialNumber"); }
    Values Drives() { return m_File.Query("SELECT DriveKey FROM PD ORDER BY DriveKey"); }
};

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

TEST_F(UpdateSystemRows, OfANewcomerStandEvenWhenTheFormerDriveHasMovedToAnotherSlot)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).m_Location->m_Bus = 7;
    m_Fakes.Add(CFakeDrive(2)).Serial("NEW").m_Location->m_Bus = 1;
    Update();
    EXPECT_THAT(Adapters(), ElementsAre("NEW"));
    EXPECT_THAT(Drives(), ElementsAre("NEW"));
}

// The one that moved is no newcomer: nothing has replaced the row of the adapter that was there before.
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
