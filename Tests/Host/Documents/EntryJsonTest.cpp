#include "Documents/EntryJson.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {

using namespace Host::Journal;

TEST(EntryJsonTest, AnEntryTellsWhatWhenAndOfWhich)
{
    Entry entry{Kind::SpareLow, Phase::Present, Severity::Error,  10968, "S", {},
                "x: text.",     std::nullopt,   1'767'225'600'123};
    entry.m_Drive.m_Device = "/dev/nvme0n1";
    entry.m_Drive.m_Serial = "S";
    EXPECT_EQ(Host::Cli::entryJson(entry).dump(),
              R"({"time":"2026-01-01T00:00:00.123Z","kind":"spare-low","phase":"present","severity":4,)"
              R"("text":"x: text.","event":10968,"drive":{"device":"/dev/nvme0n1","serial":"S"}})");
    entry.m_Event.reset();
    EXPECT_FALSE(Host::Cli::entryJson(entry).contains("event"));
}

} // namespace
