#include "Host/Journal/RandomHistory.h"
#include "Journal/Journal.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <set>
#include <sstream>

namespace {

using namespace Host::Journal;
using Host::Cli::Observation;
using Host::Cli::ObservedDrive;
using HostTest::History;
using HostTest::RandomHistory;

constexpr std::uint64_t INTERVAL = HostTest::INTERVAL;

/** An entry in short: time, start of the interval, kind, drive. */
std::string inShort(std::uint64_t end, std::optional<std::uint64_t> begin, const std::string& key, Kind kind,
                    Phase phase)
{
    std::ostringstream text;
    text << end << " since " << (begin ? std::to_string(*begin) : "ever") << ' ' << key << ' '
         << kindName(kind) << ' ' << phaseName(phase);
    return text.str();
}

/**
 * The expected entries of a history. They are found from the whole history, one drive and one value at a
 * time.
 */
class Oracle
{
public:
    explicit Oracle(const History& history) : m_History(history)
    {
        std::set<std::string> serials;
        for (const Observation& look : history)
            for (const ObservedDrive& drive : look.m_Drives)
                serials.insert(drive.m_Serial);
        for (const std::string& serial : serials)
            findStays(serial);
    }

    const std::multiset<std::string>& told() const { return m_Told; }

private:
    struct Sighting
    {
        std::uint64_t m_Time;
        const ObservedDrive* m_Drive;
    };
    using Stay = std::vector<Sighting>;

    void findStays(const std::string& serial)
    {
        m_Serial = serial;
        Stay stay;
        for (const Observation& look : m_History) {
            const auto found =
                std::find_if(look.m_Drives.begin(), look.m_Drives.end(),
                             [&](const ObservedDrive& drive) { return drive.m_Serial == serial; });
            if (found != look.m_Drives.end()) {
                if (stay.empty() && look.m_Moment.m_Time != INTERVAL)
                    tell(look.m_Moment.m_Time, look.m_Moment.m_Time - INTERVAL, Kind::DriveAdded,
                         Phase::Change);
                stay.push_back({look.m_Moment.m_Time, &*found});
            } else if (!stay.empty()) {
                tell(look.m_Moment.m_Time, look.m_Moment.m_Time - INTERVAL, Kind::DriveRemoved,
                     Phase::Change);
                lookInto(stay);
                stay.clear();
            }
        }
        lookInto(stay);
    }

    void lookInto(const Stay& stay)
    {
        const std::pair<int, Kind> warnings[] = {{0x01, Kind::SpareLow},
                                                 {0x02, Kind::OverTemperature},
                                                 {0x04, Kind::ReliabilityDegraded},
                                                 {0x08, Kind::ReadOnly},
                                                 {0x10, Kind::MemoryBackupFailed}};
        for (const auto& [bit, kind] : warnings)
            if (kind != Kind::OverTemperature || stay.empty() || !stay[0].m_Drive->m_TemperatureLimit)
                condition(stay, kind, [bit = bit](const ObservedDrive& drive, bool) {
                    return drive.m_Warnings ? std::optional((*drive.m_Warnings & bit) != 0) : std::nullopt;
                });
        condition(stay, Kind::BelowNew, [](const ObservedDrive& drive, bool) { return drive.m_BelowNew; });
        if (!stay.empty() && stay[0].m_Drive->m_TemperatureLimit)
            hot(stay, Kind::OverTemperature, 70);
        hot(stay, Kind::OverCriticalTemperature, 80);
        margin(stay);
        steps(stay, Kind::SpareFell, [](const ObservedDrive& drive) -> std::optional<int> {
            if (!drive.m_Spare)
                return std::nullopt;
            const int spare = *drive.m_Spare;
            return spare > 75 ? 0 : spare > 50 ? 1 : spare > 25 ? 2 : spare > 10 ? 3 : 4;
        });
        const auto wearStep = [](std::optional<std::int32_t> wear) -> std::optional<int> {
            if (!wear)
                return std::nullopt;
            return *wear < 50 ? 0 : *wear < 80 ? 1 : *wear < 90 ? 2 : *wear < 100 ? 3 : 4;
        };
        steps(stay, Kind::WearGrew, [&](const ObservedDrive& drive) { return wearStep(drive.m_Wear); });
        steps(stay, Kind::OwnWearGrew, [&](const ObservedDrive& drive) { return wearStep(drive.m_OwnWear); });
        // Between two looks another drive with the same name and fewer errors may have replaced a drive.
        present(stay, Kind::MediaErrorsGrew, [](const ObservedDrive& drive) { return drive.m_MediaErrors; });
        changes(
            stay, Kind::MediaErrorsGrew, [](const ObservedDrive& drive) { return drive.m_MediaErrors; },
            std::greater<>());
        changes(stay, Kind::CapacityChanged, [](const ObservedDrive& drive) { return drive.m_CapacityMiB; });
        changes(stay, Kind::BlockSizeChanged, [](const ObservedDrive& drive) { return drive.m_BlockSize; });
        changes(stay, Kind::FirmwareChanged,
                [](const ObservedDrive& drive) { return std::optional(drive.m_Firmware); });
        changes(stay, Kind::Moved,
                [](const ObservedDrive& drive) { return std::optional(drive.m_PciAddress); });
    }

    /** Temperatures here are whole degrees. */
    void hot(const Stay& stay, Kind kind, int limit)
    {
        condition(stay, kind, [limit](const ObservedDrive& drive, bool before) {
            return drive.m_Temperature
                       ? std::optional(*drive.m_Temperature >= static_cast<float>(before ? limit - 2 : limit))
                       : std::nullopt;
        });
    }

    void condition(const Stay& stay, Kind kind,
                   const std::function<std::optional<bool>(const ObservedDrive&, bool)>& holds)
    {
        bool before = false;
        std::optional<std::uint64_t> known;
        for (const Sighting& sighting : stay) {
            const std::optional<bool> now = holds(*sighting.m_Drive, before);
            if (!now)
                continue;
            if (*now != before)
                tell(sighting.m_Time, known, kind,
                     before  ? Phase::Ended
                     : known ? Phase::Began
                             : Phase::Present);
            before = *now;
            known = sighting.m_Time;
        }
    }

    void margin(const Stay& stay)
    {
        TLXX::ETemperatureMargin before = TLXX::ETemperatureMargin::Safe;
        std::optional<std::uint64_t> known;
        for (const Sighting& sighting : stay) {
            const auto now = sighting.m_Drive->m_TemperatureMargin;
            if (!now)
                continue;
            if (*now != before)
                tell(sighting.m_Time, known, Kind::TemperatureMargin,
                     *now == TLXX::ETemperatureMargin::Safe ? Phase::Ended
                     : known                                ? Phase::Began
                                                            : Phase::Present);
            before = *now;
            known = sighting.m_Time;
        }
    }

    void steps(const Stay& stay, Kind kind,
               const std::function<std::optional<int>(const ObservedDrive&)>& stepOf)
    {
        int furthest = 0;
        std::optional<std::uint64_t> known;
        for (const Sighting& sighting : stay) {
            const std::optional<int> step = stepOf(*sighting.m_Drive);
            if (!step)
                continue;
            // Here spare and warnings are read together.
            const bool told = kind == Kind::SpareFell && (*sighting.m_Drive->m_Warnings & 0x01) != 0;
            if (*step > furthest && !told && (known || *step > 1))
                tell(sighting.m_Time, known, kind, known ? Phase::Change : Phase::Present);
            furthest = std::max(furthest, *step);
            known = sighting.m_Time;
        }
    }

    template<typename FigureOf>
    void present(const Stay& stay, Kind kind, FigureOf figureOf)
    {
        for (const Sighting& sighting : stay)
            if (const auto figure = figureOf(*sighting.m_Drive)) {
                if (*figure > 0)
                    tell(sighting.m_Time, std::nullopt, kind, Phase::Present);
                return;
            }
    }

    template<typename ValueOf, typename IsNews = std::not_equal_to<>>
    void changes(const Stay& stay, Kind kind, ValueOf valueOf, IsNews isNews = {})
    {
        decltype(valueOf(*stay[0].m_Drive)) before;
        std::uint64_t known = 0;
        for (const Sighting& sighting : stay) {
            const auto now = valueOf(*sighting.m_Drive);
            if (!now)
                continue;
            if (before && isNews(*now, *before))
                tell(sighting.m_Time, known, kind, Phase::Change);
            before = now;
            known = sighting.m_Time;
        }
    }

    void tell(std::uint64_t end, std::optional<std::uint64_t> begin, Kind kind, Phase phase)
    {
        m_Told.insert(inShort(end, begin, m_Serial, kind, phase));
    }

    const History& m_History;
    std::string m_Serial;
    std::multiset<std::string> m_Told;
};

struct Replay
{
    std::vector<Entry> m_Entries;
    State m_State;
};

Replay replay(const History& history, std::size_t first, std::size_t end, State state = {})
{
    Replay result{{}, std::move(state)};
    for (std::size_t i = first; i < end; ++i) {
        Outcome outcome = advance(result.m_State, history[i]);
        result.m_Entries.insert(result.m_Entries.end(), outcome.m_Entries.begin(), outcome.m_Entries.end());
        result.m_State = std::move(outcome.m_State);
    }
    return result;
}

std::multiset<std::string> inShort(const std::vector<Entry>& entries)
{
    std::multiset<std::string> result;
    for (const Entry& entry : entries)
        result.insert(inShort(entry.m_End, entry.m_Begin, entry.m_Key, entry.m_Kind, entry.m_Phase));
    return result;
}

class JournalHistoryTest : public testing::TestWithParam<std::uint32_t>
{
protected:
    const History m_History = RandomHistory(GetParam()).make(60);
};

TEST_P(JournalHistoryTest, EachChangeIsToldExactlyOnce)
{
    Replay whole = replay(m_History, 0, m_History.size());
    // Tests of their own are about these.
    std::erase_if(whole.m_Entries, [](const Entry& entry) {
        return entry.m_Kind == Kind::PowerLost || entry.m_Kind == Kind::CounterWentBack ||
               entry.m_Kind == Kind::WorkedElsewhere || entry.m_Kind == Kind::ErrorLogGrew;
    });
    EXPECT_EQ(inShort(whole.m_Entries), Oracle(m_History).told());
    EXPECT_FALSE(whole.m_Entries.empty());
}

TEST_P(JournalHistoryTest, TheStateIsAllThatOneLookHandsOn)
{
    const Replay whole = replay(m_History, 0, m_History.size());
    for (std::size_t split = 0; split <= m_History.size(); split += 7) {
        const Replay before = replay(m_History, 0, split);
        Replay after = replay(m_History, split, m_History.size(), State(before.m_State));
        after.m_Entries.insert(after.m_Entries.begin(), before.m_Entries.begin(), before.m_Entries.end());
        EXPECT_EQ(after.m_Entries, whole.m_Entries);
        EXPECT_EQ(after.m_State, whole.m_State);
    }
}

TEST_P(JournalHistoryTest, NothingIsToldWhenNothingChanged)
{
    State state;
    for (Observation look : m_History) {
        state = advance(state, look).m_State;
        EXPECT_EQ(advance(state, look).m_State, state);
        ++look.m_Moment.m_Time;
        ++*look.m_Moment.m_Uptime;
        EXPECT_TRUE(advance(state, look).m_Entries.empty());
    }
}

TEST_P(JournalHistoryTest, TheOrderOfDrivesDoesNotMatter)
{
    History reversed = m_History;
    for (Observation& look : reversed)
        std::reverse(look.m_Drives.begin(), look.m_Drives.end());
    EXPECT_EQ(inShort(replay(reversed, 0, reversed.size()).m_Entries),
              inShort(replay(m_History, 0, m_History.size()).m_Entries));
}

INSTANTIATE_TEST_SUITE_P(Seeds, JournalHistoryTest, testing::Range(1U, 41U));

} // namespace
