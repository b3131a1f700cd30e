#include "Journal/Told.h"

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
    const std::vector<Entry> others = {entry(10968, "B"), entry(11088, "A"), entry(std::nullopt, "A")};
    std::vector<Entry> entries = others;
    entries.push_back(entry(10968, "A"));
    entries.push_back(entry(10968, "A"));
    EXPECT_EQ(withoutTold(entries, {event(10968, "A")}), others);
}

TEST(ToldTest, WithoutASerialNumberThePlaceTellsDrivesApart)
{
    const std::vector<Entry> entries = {entry(10968, "", "0000:01:00.0"), entry(10968, "", "0000:02:00.0")};
    EXPECT_THAT(withoutTold(entries, {event(10968, "", "0000:02:00.0")}), ElementsAre(entries[0]));
    const std::vector<Entry> copies = {entry(10968, "A", "0000:01:00.0")};
    EXPECT_THAT(withoutTold(copies, {event(10968, "A", "0000:02:00.0")}), IsEmpty());
}

TEST(ToldTest, AnEventWithoutADriveStandsForOneEntry)
{
    const std::vector<Entry> entries = {entry(11093, "A"), entry(11093, "B"), entry(11093, "C"),
                                        entry(11094, "D"), entry(std::nullopt, "E")};
    EXPECT_THAT(withoutTold(entries, {namelessEvent(11093), event(11093, "C")}),
                ElementsAre(entries[1], entries[3], entries[4]));
}

} // namespace
