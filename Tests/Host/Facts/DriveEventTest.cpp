#include "Facts/DriveEvent.h"

#include "Host/Catalogue.h"

#include <PI/EventCode.h>

namespace {

using namespace Host::Cli;
using testing::ElementsAre;

class DriveEventTest : public testing::Test
{
protected:
    static Drive drive(std::uint64_t id, const std::string& serial, const std::string& name = {})
    {
        Drive result;
        result.m_AdapterId = id;
        result.m_DriveId = id + 1;
        result.m_Serial = serial;
        result.m_Name = name;
        result.m_Model = "MODEL";
        result.m_Device = "/dev/nvme" + serial;
        return result;
    }

    static PI::CEvent event(std::uint32_t id, const std::string& name = {},
                            std::uint64_t source = PI::EVENT_SOURCE_HOST)
    {
        PI::CEvent result;
        result.m_Id = id;
        result.m_Severity = PI::EVENT_SEVERITY_INFORMATION;
        result.m_Source = source;
        result.SetSource(name);
        result.SetPlaceHolder1(name);
        result.SetPlaceHolder2(" ");
        return result;
    }

    /** The serial number of each event's drive, "-" for none. */
    static std::vector<std::string> serials(const std::vector<DriveEvent>& events)
    {
        std::vector<std::string> result;
        for (const DriveEvent& each : events)
            result.push_back(each.m_Drive ? each.m_Drive->m_Serial : "-");
        return result;
    }

private:
    HostTest::Catalogue m_Catalogue;
};

TEST_F(DriveEventTest, FindsTheSourceAmongAdaptersAndDrives)
{
    const std::vector<Drive> before = {drive(0x10, "GONE"), drive(0x20, "B")};
    const std::vector<Drive> after = {drive(0x20, "B"), drive(0x30, "C")};
    EXPECT_THAT(
        serials(withDrives({event(PI::EVENT_SPARE_LOW, "n", 0x20), event(PI::EVENT_DRIVE_CHANGED, "n", 0x31),
                            event(PI::EVENT_MEMORY_BACKUP_FAILED, "n", 0x10),
                            event(PI::EVENT_MEMORY_BACKUP_FAILED, "n", 0x99)},
                           before, after)),
        ElementsAre("B", "C", "GONE", "-"));
}

TEST_F(DriveEventTest, NewAdaptersWithoutANameStandInTheOrderOfTheTopology)
{
    const std::vector<Drive> before = {drive(0x10, "A")};
    const std::vector<Drive> after = {drive(0x40, "D"), drive(0x10, "A"), drive(0x30, "C"), drive(0x20, "B")};
    EXPECT_THAT(serials(withDrives({event(PI::EVENT_ADAPTER_ADDED), event(PI::EVENT_ADAPTER_ADDED),
                                    event(PI::EVENT_ADAPTER_ADDED)},
                                   before, after)),
                ElementsAre("D", "C", "B"));
}

TEST_F(DriveEventTest, RemovedAdaptersStandInReverse)
{
    const std::vector<Drive> before = {drive(0x40, "D"), drive(0x10, "A"), drive(0x30, "C")};
    EXPECT_THAT(serials(withDrives({event(PI::EVENT_ADAPTER_REMOVED), event(PI::EVENT_ADAPTER_REMOVED)},
                                   before, {drive(0x10, "A")})),
                ElementsAre("C", "D"));
}

TEST_F(DriveEventTest, ANameCountsMoreThanTheOrder)
{
    const std::vector<Drive> before = {drive(0x10, "A", "one"), drive(0x20, "B", "two"), drive(0x30, "C")};
    EXPECT_THAT(
        serials(withDrives({event(PI::EVENT_ADAPTER_REMOVED, "one"), event(PI::EVENT_ADAPTER_REMOVED, "two"),
                            event(PI::EVENT_ADAPTER_REMOVED)},
                           before, {})),
        ElementsAre("A", "B", "C"));
}

TEST_F(DriveEventTest, ASwapIsOneOfEach)
{
    EXPECT_THAT(serials(withDrives({event(PI::EVENT_ADAPTER_REMOVED), event(PI::EVENT_ADAPTER_ADDED)},
                                   {drive(0x10, "OLD")}, {drive(0x20, "NEW")})),
                ElementsAre("OLD", "NEW"));
}

TEST_F(DriveEventTest, NobodyGuessesWhenOneCameAndWentMeanwhile)
{
    EXPECT_THAT(serials(withDrives({event(PI::EVENT_ADAPTER_ADDED), event(PI::EVENT_ADAPTER_ADDED),
                                    event(PI::EVENT_ADAPTER_REMOVED)},
                                   {}, {drive(0x20, "B")})),
                ElementsAre("-", "-", "-"));
}

TEST_F(DriveEventTest, ANameInEveryPlaceOfTheText)
{
    DriveEvent changed{event(PI::EVENT_DRIVE_CHANGED, "%2"), std::nullopt};
    changed.m_Event.SetPlaceHolder2("%1");
    EXPECT_EQ(eventText(changed), "%2: drive %1 has changed.");
    EXPECT_EQ(eventText({event(PI::EVENT_ADAPTER_ADDED, "name"), std::nullopt}), "name was added.");
    EXPECT_EQ(eventText({event(4712, "name"), std::nullopt}), "Event 4712 of name");
}

TEST_F(DriveEventTest, ANamelessAdapterGoesByModelAndSerialNumber)
{
    DriveEvent added{event(PI::EVENT_ADAPTER_ADDED), drive(0x10, "A")};
    EXPECT_EQ(eventText(added), "MODEL (A) was added.");
    added.m_Drive->m_Vendor = "INTEL";
    EXPECT_EQ(eventText(added), "INTEL MODEL (A) was added.");
    added.m_Drive = Drive{};
    EXPECT_EQ(eventText(added), "An adapter was added.");
    added.m_Drive.reset();
    EXPECT_EQ(eventText(added), "An adapter was added.");
}

TEST_F(DriveEventTest, SeveritiesHaveWords)
{
    EXPECT_EQ(severityText(2), "Information");
    EXPECT_EQ(severityText(3), "Warning");
    EXPECT_EQ(severityText(4), "Error");
    EXPECT_EQ(severityText(9), "Severity 9");
}

} // namespace
