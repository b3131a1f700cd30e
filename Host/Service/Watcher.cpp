#include "Service/Watcher.h"

#include "Base/Failure.h"
#include "Base/Moment.h"
#include "Base/Time.h"
#include "Facts/NamedObjects.h"
#include "Facts/PropertySetting.h"
#include "Facts/Silence.h"
#include "Plugins/HostSetup.h"

#include <TLX/WaitInterval.h>
#include <TLX/WaitResult.h>
#include <TLX/Waiter.h>
#include <TLXX/DeviceNotification.h>

#include <exception>
#include <optional>
#include <stdexcept>
#include <utility>

namespace Host::Service {
namespace {

// How long it waits for the next try to find drives, in milliseconds. New drives are announced. Nobody
// announces that a drive answers again.
constexpr std::uint64_t PAUSE_WITHOUT_DRIVES = 60'000;
constexpr std::uint64_t PAUSE_WITH_SILENT_DRIVES = 10'000;

} // namespace

Watcher::Watcher(WatcherParts parts) : m_Parts(std::move(parts))
{
    if (m_Ended.Init(false, true) != TLX::Threading::WaitResult::Taken)
        throw std::runtime_error("The system has no event left for the service.");
}

void Watcher::end()
{
    m_Ended.Set();
    m_Parts.m_Plan.m_Drives->stopWaiting();
}

void Watcher::run()
{
    if (const std::unique_ptr<Watched> watched = awaitDrives())
        watch(*watched);
}

std::unique_ptr<Watched> Watcher::awaitDrives()
{
    constexpr std::uint32_t ended = 1;
    constexpr std::uint32_t wished = 2;
    TLX::Threading::CEvent announced;
    if (announced.Init(false, false) != TLX::Threading::WaitResult::Taken)
        throw std::runtime_error("The system has no event left for the service.");
    // Registered before the first try, so that drives which come during it are noticed.
    const TLXX::CDeviceNotification notification(announced);
    TLX::Threading::CWaiter waiter{&m_Ended, &m_Parts.m_Board.wished(), &announced};
    for (;;) {
        if (std::unique_ptr<Watched> watched = begin())
            return watched;
        const TLX::Threading::CWaitInterval interval(pause());
        std::uint32_t fired = 0;
        while ((fired = waiter.Wait(interval)) == wished)
            m_Parts.m_Board.refuseWishes(Failure(ExitCode::NoHardware, m_Trouble));
        if (fired == ended)
            return nullptr;
    }
}

std::uint64_t Watcher::pause() const
{
    const bool anySilent = !Cli::silentInstances(m_Parts.m_Plan.m_Drives->lastRound().m_Answers).empty();
    return anySilent ? PAUSE_WITH_SILENT_DRIVES : PAUSE_WITHOUT_DRIVES;
}

std::unique_ptr<Watched> Watcher::begin()
{
    const std::uint64_t before = m_Parts.m_Plan.m_Drives->lastNumber();
    try {
        auto watched = std::make_unique<Watched>(m_Parts.m_Plan);
        watched->start();
        noteTrouble({});
        return watched;
    } catch (const Failure& failure) {
        noteTrouble(failure.what());
        // Without a round it is not known which drives there are.
        if (failure.exitCode() == ExitCode::NoHardware && m_Parts.m_Plan.m_Drives->lastNumber() != before)
            lookWithoutDrives();
    }
    return nullptr;
}

void Watcher::watch(Watched& watched)
{
    constexpr std::uint32_t ended = 1;
    constexpr std::uint32_t wished = 2;
    std::vector<TLX::Threading::CEvent*> events = {&m_Ended, &m_Parts.m_Board.wished(),
                                                   &m_Parts.m_Plan.m_Drives->roundEnded()};
    for (Monitor& monitor : watched.monitors())
        events.push_back(&monitor.notified());
    TLX::Threading::CWaiter waiter(events);
    look(watched);
    for (;;) {
        const std::uint32_t fired = waiter.Wait();
        if (fired == TLX::Threading::WaitResult::Failed)
            throw std::runtime_error("The system does not let the program wait for events.");
        if (fired == ended)
            break;
        if (fired == wished)
            fulfilWishes(watched);
        look(watched);
    }
    stop(watched);
}

void Watcher::stop(Watched& watched)
{
    watched.stopLooking();
    for (Monitor& monitor : watched.monitors())
        try {
            if (monitor.stop() != Ending::ByItself)
                m_Parts.m_Plan.m_Warn("The plug-in did not end in time. A drive may have stopped answering.");
        } catch (const Failure& failure) {
            m_Parts.m_Plan.m_Warn(failure.what());
        }
}

void Watcher::look(Watched& watched)
{
    ParallelDrives& drives = *m_Parts.m_Plan.m_Drives;
    for (;;) {
        // What is signalled from here on may be newer than what is read below.
        drives.roundEnded().Reset();
        DriveRound round = drives.lastRound();
        try {
            watched.refresh(round.m_Answers);
        } catch (const Failure& failure) {
            return noteTrouble(failure.what());
        }
        noteTrouble(watched.complaint());
        if (!m_Trouble.empty())
            return;
        const Moment moment = presentMoment();
        const auto snapshot = std::make_shared<const Cli::Snapshot>(
            watched.objects(std::move(round.m_Answers)), round.m_Number, moment.m_Time);
        // A new round may already have renewed the pages of some drives.
        if (drives.lastNumber() != round.m_Number)
            continue;
        m_Parts.m_Board.count([&](Cli::ServiceFigures& figures) {
            figures.m_PollInterval = watched.monitors().front().pollInterval();
        });
        return publish(snapshot, moment, round);
    }
}

void Watcher::lookWithoutDrives()
{
    DriveRound round = m_Parts.m_Plan.m_Drives->lastRound();
    const Moment moment = presentMoment();
    publish(std::make_shared<const Cli::Snapshot>(ObjectStore({}, {}, std::move(round.m_Answers)),
                                                  round.m_Number, moment.m_Time),
            moment, round);
}

void Watcher::publish(const std::shared_ptr<const Cli::Snapshot>& snapshot, const Moment& moment,
                      const DriveRound& round)
{
    m_Parts.m_Board.count([&](Cli::ServiceFigures& figures) {
        if (round.m_Number != std::exchange(m_TimedRound, round.m_Number))
            figures.m_Rounds.add(static_cast<double>(round.m_Duration) / MILLISECONDS_A_SECOND);
        figures.m_ReadErrors = round.m_Failures;
    });
    m_Parts.m_Board.show(snapshot);
    m_Parts.m_Teller.tell(*snapshot, moment);
    m_Parts.m_OnNews();
}

void Watcher::noteTrouble(const std::string& trouble)
{
    if (trouble == m_Trouble)
        return;
    m_Trouble = trouble;
    if (!trouble.empty())
        m_Parts.m_Plan.m_Warn(trouble);
    m_Parts.m_Board.count([&](Cli::ServiceFigures& figures) { figures.m_Trouble = trouble; });
    m_Parts.m_OnNews();
}

void Watcher::fulfilWishes(Watched& watched)
{
    for (const Wish& wish : m_Parts.m_Board.takeWishes()) {
        std::optional<PI::CProperty> property;
        std::exception_ptr failed;
        try {
            const ObjectStore objects = watched.objects();
            const Cli::NamedProperty named =
                Cli::namedProperty(Cli::namedObjects(objects, wish.m_Object), wish.m_Property);
            property = Cli::setProperty(watched.showing(named.m_Object.m_ID), named.m_Object,
                                        named.m_Property, wish.m_Value, settingsFile(m_Parts.m_Plan.m_Data));
        } catch (const Failure&) {
            failed = std::current_exception();
        }
        wish.m_Done(property ? &*property : nullptr, failed);
    }
}

} // namespace Host::Service
