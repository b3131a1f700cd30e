#include "Journal/Told.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>

namespace {

using namespace Host::Journal;
using Host::Cli::Drive;
using Host::Cli::DriveEvent;
using testing::ElementsAre;
using testing::IsEmpty;

Entry entry(std::optional<std::uint32_t> event, const std::string& serial, const std::string& address = {})
{
    Entry result;
    result.m_Event = event;
    result.m_Drive.m_Serial = serial;
    result.m_Drive.m_PciAddress = address;
    return result;
}

DriveEvent event(std::uint32_t id, const std::string& serial, const std::string& address = {})
{
    DriveEvent result;
    result.m_Event.m_Id = id;
    result.m_Drive.emplace();
    result.m_Drive->m_Serial = serial;
    result.m_Drive->m_PciAddress = address;
    return result;
}

DriveEvent namelessEvent(std::uint32_t id)
{
    DriveEvent result;
    result.m_Event.m_Id = id;
    return result;
}

TEST(ToldTest, AnEventStandsForTheEntriesOfItsNumberAndDrive)
{
    const std::vector<Entry> others = {entry(PI::EVENT_SPARE_LOW, "B"),
                                       entry(PI::EVENT_RELIABILITY_DEGRADED, "A"), entry(std::nullopt, "A")};
    std::vector<Entry> entries = others;
    entries.push_back(entry(PI::EVENT_SPARE_LOW, "A"));
    entries.push_back(entry(PI::EVENT_SPARE_LOW, "A"));
    EXPECT_EQ(withoutTold(entries, {event(PI::EVENT_SPARE_LOW, "A")}), others);
}

TEST(ToldTest, WithoutASerialNumberThePlaceTellsDrivesApart)
{
    const std::vector<Entry> entries = {entry(PI::EVENT_SPARE_LOW, "", "0000:01:00.0"),
                                        entry(PI::EVENT_SPARE_LOW, "", "0000:02:00.0")};
    EXPECT_THAT(withoutTold(entries, {event(PI::EVENT_SPARE_LOW, "", "0000:02:00.0")}),
                ElementsAre(entries[0]));
    const std::vector<Entry> copies = {entry(PI::EVENT_SPARE_LOW, "A", "0000:01:00.0")};
    EXPECT_THAT(withoutTold(copies, {event(PI::EVENT_SPARE_LOW, "A", "0000:02:00.0")}), IsEmpty());
}

TEST(ToldTest, AnEventWithoutADriveStandsForOneEntry)
{
    const std::vector<Entry> entries = {
        entry(PI::EVENT_ADAPTER_ADDED, "A"), entry(PI::EVENT_ADAPTER_ADDED, "B"),
        entry(PI::EVENT_ADAPTER_ADDED, "C"), entry(PI::EVENT_ADAPTER_REMOVED, "D"), entry(std::nullopt, "E")};
    EXPECT_THAT(
        withoutTold(entries, {namelessEvent(PI::EVENT_ADAPTER_ADDED), event(PI::EVENT_ADAPTER_ADDED, "C")}),
        ElementsAre(entries[1], entries[3], entries[4]));
}

} // namespace
