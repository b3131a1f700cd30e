#include "Base/Failure.h"
#include "Host/Journal/RandomHistory.h"
#include "Journal/Reader.h"
#include "Journal/ServiceLife.h"
#include "Journal/Store.h"
#include "Support/FaultyVfs.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <random>

namespace {

using namespace Host::Journal;
using TestSupport::CFaultyVfs;

/** An entry without its times. */
using Told = std::tuple<Kind, Phase, Severity, std::optional<std::uint32_t>, std::string, std::string>;

void append(std::vector<Told>& all, const Entry& entry)
{
    if (entry.m_Kind != Kind::ServiceStarted && entry.m_Kind != Kind::ServiceEnded)
        all.emplace_back(entry.m_Kind, entry.m_Phase, entry.m_Severity, entry.m_Event, entry.m_Key,
                         entry.m_Text);
}

/** What a service tells that nothing ever disturbs. */
std::vector<Told> undisturbed(const HostTest::History& history)
{
    std::vector<Told> told;
    State state;
    for (const Host::Cli::Observation& look : history) {
        Outcome outcome = advance(state, look);
        for (const Entry& entry : outcome.m_Entries)
            append(told, entry);
        state = std::move(outcome.m_State);
    }
    return told;
}

/** A service over the same machine. It ends, dies, and cannot write, at random moments. */
class DisturbedService
{
public:
    DisturbedService(std::filesystem::path file, std::uint32_t seed) : m_File(std::move(file)), m_Random(seed)
    {}

    void run(const HostTest::History& history)
    {
        for (const Host::Cli::Observation& look : history) {
            // The machine stays as it is until the service has kept a look at it.
            while (!keeps(look))
                ++m_Disturbances;
            if (below(8) == 0)
                end();
        }
        m_Vfs.Heal();
        end();
    }

    std::size_t disturbances() const { return m_Disturbances; }

private:
    std::uint32_t below(std::uint32_t limit)
    {
        return static_cast<std::uint32_t>(std::uint64_t{m_Random()} % limit);
    }

    bool keeps(Host::Cli::Observation look)
    {
        disturb();
        try {
            if (!m_Store)
                start();
            look.m_Moment = moment();
            m_Store->commit(advance(m_Store->state(), look));
            return true;
        } catch (const Host::Failure&) {
            if (m_Vfs.Killed())
                m_Store.reset();
            m_Vfs.Revive();
            return false;
        }
    }

    /** Plans what goes wrong next, if anything. */
    void disturb()
    {
        const auto kill = static_cast<CFaultyVfs::Kill>(below(4));
        const auto operation = static_cast<CFaultyVfs::Operation>(below(CFaultyVfs::OPERATIONS));
        const auto failure = static_cast<CFaultyVfs::Failure>(below(2));
        m_Vfs.Heal();
        switch (below(4)) {
        case 0:
            m_Vfs.KillAfter(below(40), kill);
            break;
        case 1:
            m_Vfs.FailOnce(operation, below(10), failure);
            break;
        default:
            break;
        }
    }

    void start()
    {
        auto store = std::make_unique<Store>(m_File, [this](const std::string& text) {
            ADD_FAILURE() << text << " after " << m_Disturbances << " disturbances";
        });
        store->commit(serviceStarted(store->state(), moment()));
        m_Store = std::move(store);
    }

    void end()
    {
        if (!m_Store)
            return;
        try {
            m_Store->commit(serviceEnded(m_Store->state(), moment()));
        } catch (const Host::Failure&) {
            ++m_Disturbances;
        }
        m_Store.reset();
        m_Vfs.Revive();
    }

    Host::Moment moment()
    {
        m_Time += HostTest::INTERVAL;
        return {m_Time, m_Time, "boot"};
    }

    const std::filesystem::path m_File;
    std::mt19937 m_Random;
    CFaultyVfs m_Vfs;
    std::unique_ptr<Store> m_Store; // goes before the file system
    std::uint64_t m_Time = 0;
    std::size_t m_Disturbances = 0;
};

class CrashModelTest : public testing::TestWithParam<std::uint32_t>
{};

TEST_P(CrashModelTest, ADisturbedServiceTellsTheSame)
{
    const HostTest::History history = HostTest::RandomHistory(GetParam()).make(40);
    const TestSupport::CTemporaryFolder folder;
    DisturbedService service(serviceFile(folder.Path()), GetParam());
    service.run(history);
    EXPECT_GT(service.disturbances(), 0U);

    std::vector<Told> told;
    std::uint64_t number = 0;
    for (const NumberedEntry& entry : Reader(serviceFile(folder.Path())).read(0, 100'000)) {
        EXPECT_EQ(entry.m_Number, ++number);
        append(told, entry.m_Entry);
    }
    EXPECT_THAT(told, testing::ContainerEq(undisturbed(history)));
    EXPECT_GT(number, told.size()) << "it was started, too";
}

INSTANTIATE_TEST_SUITE_P(Seeds, CrashModelTest, testing::Range(1U, 31U));

} // namespace
