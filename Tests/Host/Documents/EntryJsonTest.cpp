#include "Documents/EntryJson.h"

#include "Support/SourceTree.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <set>

namespace {

using namespace Host::Journal;

TEST(EntryJsonTest, AnEntryTellsWhatWhenAndOfWhich)
{
    Entry entry{Kind::SpareLow, Phase::Present, Severity::Error,  PI::EVENT_SPARE_LOW, "K", {},
                "x: text.",     std::nullopt,   1'767'225'600'123};
    entry.m_Drive.m_Device = "/dev/nvme0n1";
    entry.m_Drive.m_Serial = "S";
    EXPECT_EQ(Host::Cli::entryJson(entry).dump(),
              R"({"time":"2026-01-01T00:00:00.123Z","kind":"spare-low","phase":"present","severity":4,)"
              R"("text":"x: text.","event":10968,"key":"K","drive":{"device":"/dev/nvme0n1","serial":"S"}})");
    entry.m_Event.reset();
    EXPECT_FALSE(Host::Cli::entryJson(entry).contains("event"));
    entry.m_Begin = 1'767'225'540'000;
    EXPECT_EQ(Host::Cli::entryJson(entry)["begin"], "2025-12-31T23:59:00.000Z");
}

TEST(EntryJsonTest, TheSchemasKnowEveryKind)
{
    const auto kindsIn = [](const char* schema) {
        std::ifstream file(TestSupport::sourceTree(schema));
        return nlohmann::json::parse(file)["properties"]["kind"]["enum"].get<std::set<std::string>>();
    };
    std::set<std::string> kinds;
    for (int kind = 0; kind <= static_cast<int>(Kind::ServiceEnded); ++kind)
        kinds.emplace(kindName(static_cast<Kind>(kind)));
    EXPECT_EQ(kindsIn("Docs/Schemas/entry.json"), kinds);
    for (const Kind kind : {Kind::MachineRestarted, Kind::ServiceStarted, Kind::ServiceEnded})
        kinds.erase(std::string(kindName(kind)));
    EXPECT_EQ(kindsIn("Docs/Schemas/news.json"), kinds) << "watch runs during one boot and is no service";
}

TEST(EntryJsonTest, AnEntryWithoutADriveNamesNone)
{
    Entry entry;
    entry.m_Kind = Kind::ServiceStarted;
    entry.m_Text = "The service started.";
    EXPECT_EQ(Host::Cli::numberedEntryJson({7, entry}).dump(),
              R"({"number":7,"time":"1970-01-01T00:00:00.000Z","kind":"service-started","phase":"change",)"
              R"("severity":2,"text":"The service started."})");
}

} // namespace
