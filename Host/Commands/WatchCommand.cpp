#include "Commands/WatchCommand.h"

#include "Base/Failure.h"
#include "Base/Moment.h"
#include "Base/Platform.h"
#include "Base/Time.h"
#include "Commands/PollForecast.h"
#include "Commands/Session.h"
#include "Documents/EntryJson.h"
#include "Documents/Json.h"
#include "Facts/DriveCheck.h"
#include "Facts/DriveEvent.h"
#include "Facts/DriveKey.h"
#include "Facts/Observation.h"
#include "Facts/Silence.h"
#include "Journal/Journal.h"
#include "Journal/Remaining.h"
#include "Journal/Told.h"
#include "Terminal/EventLine.h"

#include <TLX/Clock.h>
#include <TLX/Thread.h>
#include <TLX/WaitInterval.h>
#include <TLX/WaitResult.h>
#include <TLX/Waiter.h>
#include <TLXX/DeviceNotification.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <exception>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <utility>

namespace Host::Cli {
namespace {

constexpr std::uint64_t NEVER = std::numeric_limits<std::uint64_t>::max();

/** Whether the health is known and bad. */
bool isSick(const Drive& drive)
{
    const Tone tone =
        drive.m_Health && drive.m_Health->m_Code ? toneOfCode(*drive.m_Health->m_Code) : Tone::Plain;
    return tone == Tone::Warning || tone == Tone::Bad;
}

/** For the plug-in, two devices with one serial number are one drive. */
std::string sharedSerialText(const SharedSerial& shared)
{
    std::string devices;
    for (const std::string& device : shared.m_Devices)
        devices += (devices.empty() ? "" : ", ") + std::string(shortDeviceName(device));
    return "The serial number " + shared.m_Serial + " is that of several devices: " + devices +
           ". They are controllers of one drive, or copies of one another. The plug-in takes them for one "
           "drive. It may repeat their warnings at each poll and not notice when one of them is removed.";
}

Watched beginWatched(const Session& session)
{
    const Progress progress = signOfLife(TLXX::controllerStates(), session);
    return Watched(session.watchPlan());
}

/** The drives of one plug-in. */
struct WatchedDrives
{
    Monitor& m_Monitor;
    Journal::State m_State;
};

class Watch
{
public:
    explicit Watch(const Session& session)
        : m_Session(session),
          m_Terminal(session.m_Terminal),
          m_ShowsStatus(m_Terminal.showsStatus() && !session.m_Options.m_Json),
          m_Watched(beginWatched(session))
    {
        for (Monitor& monitor : m_Watched.monitors())
            m_Plugins.push_back({monitor, {}});
    }

    /** Watches until `until`, in milliseconds of `TLX::Misc::monotonic`, or until `askedToEnd` fires. */
    void run(TLX::Threading::CEvent& askedToEnd, std::uint64_t until)
    {
        m_End = until;
        m_Watched.start();
        m_Drives = shownDrives();
        reportStart();
        watchUntil(askedToEnd);
        m_Watched.stopLooking();
        std::exception_ptr failed;
        for (WatchedDrives& plugin : m_Plugins)
            try {
                end(plugin);
            } catch (const Failure&) {
                // The last events of the other plug-ins must still be collected.
                failed = std::current_exception();
            }
        if (failed)
            std::rethrow_exception(failed);
    }

private:
    void end(WatchedDrives& plugin)
    {
        const Ending ending = plugin.m_Monitor.stop();
        if (ending != Ending::ByItself)
            m_Terminal.tell("The plug-in did not end in time. A drive may have stopped answering.");
        // The last poll may have left pending events.
        if (ending != Ending::NotYet)
            report(plugin);
    }

    void watchUntil(TLX::Threading::CEvent& askedToEnd)
    {
        constexpr std::uint32_t asked = 1;
        std::vector<TLX::Threading::CEvent*> events = {&askedToEnd};
        for (const WatchedDrives& plugin : m_Plugins)
            events.push_back(&plugin.m_Monitor.notified());
        events.push_back(&m_Session.drives()->roundEnded());
        const std::uint32_t roundEnded = static_cast<std::uint32_t>(events.size());
        TLX::Threading::CWaiter waiter(events);
        for (;;) {
            m_Watched.tellFailure();
            showStatus();
            const std::uint32_t fired = waiter.Wait(TLX::Threading::CWaitInterval(patience()));
            if (fired == asked)
                return;
            if (fired > asked && fired <= asked + m_Plugins.size())
                report(m_Plugins[fired - asked - 1]);
            else if (fired == roundEnded)
                reportRound();
            else if (fired != TLX::Threading::WaitResult::TimedOut)
                throw Failure(ExitCode::RequestFailed,
                              "The system does not let the program wait for events.");
            else if (m_ShowsStatus)
                for (Monitor& monitor : m_Watched.monitors())
                    monitor.refresh();
            if (TLX::Misc::monotonic() >= m_End)
                return;
        }
    }

    /** Without those that have never answered: no event of a plug-in is about them. */
    std::vector<Drive> shownDrives() const
    {
        std::vector<Drive> drives = joinDrives(m_Watched.objects());
        std::erase_if(drives, [](const Drive& drive) { return !drive.m_AdapterId; });
        return drives;
    }

    /** How long the program may sleep, in milliseconds. */
    std::uint64_t patience() const
    {
        // A failure of the database signals no event, so the program must look at times.
        constexpr std::uint64_t longest = 10'000;
        const std::uint64_t now = TLX::Misc::monotonic();
        const std::uint64_t next = std::min(m_End, m_ShowsStatus ? m_Forecast.next() : NEVER);
        return next <= now ? 0 : std::min(next - now, longest);
    }

    /** Prints what is already wrong with the drives. */
    void reportStart()
    {
        for (const SharedSerial& shared : sharedSerials(m_Drives))
            m_Terminal.tell(sharedSerialText(shared));
        printNews();
    }

    /** Prints what was not known before of the drives of every plug-in. */
    void printNews()
    {
        for (WatchedDrives& plugin : m_Plugins)
            for (const Journal::Entry& entry : news(plugin, look(plugin)))
                print(entry);
    }

    /** Prints which drives fell silent and which answer again. Costs little when there is none. */
    void reportRound()
    {
        std::set<std::string> silent = silentInstances(m_Session.answers());
        if (silent == m_Silent)
            return;
        m_Silent = std::move(silent);
        printNews();
    }

    void report(WatchedDrives& plugin)
    {
        std::vector<PI::CEvent> events = m_Watched.collect(plugin.m_Monitor);
        std::vector<Drive> after = shownDrives();
        const std::vector<DriveEvent> told = withDrives(std::move(events), m_Drives, after);
        for (const DriveEvent& event : told)
            m_Terminal.print(m_Session.m_Options.m_Json ? lineText(eventJson(event), m_Session.simulated())
                                                        : eventLine(event, m_Terminal.screen()));
        const Observation now = look(plugin);
        const std::vector<Journal::Entry> entries = news(plugin, now);
        for (const Journal::Entry& entry : withoutTold(entries, told))
            print(entry);
        for (const Journal::Entry& entry : remaining(now, told, entries))
            print(entry);
        m_Drives = std::move(after);
    }

    Observation look(const WatchedDrives& plugin) const
    {
        return observe(m_Watched.objectsOf(plugin.m_Monitor, answersFor(plugin)), presentMoment());
    }

    /** Returns what was not known before. What is not about a drive comes from the first plug-in alone. */
    std::vector<Journal::Entry> news(WatchedDrives& plugin, const Observation& now) const
    {
        Journal::Outcome outcome = Journal::advance(plugin.m_State, now);
        plugin.m_State = std::move(outcome.m_State);
        if (&plugin != &m_Plugins.front())
            std::erase_if(outcome.m_Entries, [](const Journal::Entry& entry) { return entry.m_Key.empty(); });
        return std::move(outcome.m_Entries);
    }

    /** Of the drives that the plug-in shows. The first plug-in also has those that none shows. */
    std::vector<DriveAnswer> answersFor(const WatchedDrives& plugin) const
    {
        std::vector<DriveAnswer> answers = m_Session.answers();
        const bool isFirst = &plugin == &m_Plugins.front();
        std::erase_if(answers, [&](const DriveAnswer& answer) {
            if (isFirst)
                return std::any_of(std::next(m_Plugins.begin()), m_Plugins.end(),
                                   [&](const WatchedDrives& other) { return shows(other, answer); });
            return !shows(plugin, answer);
        });
        return answers;
    }

    static bool shows(const WatchedDrives& plugin, const DriveAnswer& answer)
    {
        const std::vector<PI::CObject>& objects = plugin.m_Monitor.objects().objects();
        return std::any_of(objects.begin(), objects.end(), [&](const PI::CObject& object) {
            return object.m_Type == PI::TYPE_ADAPTER &&
                   shortDeviceName(textOf(object, PI::PROP_DEVICE_NAME)) ==
                       shortDeviceName(answer.m_DeviceName);
        });
    }

    void print(const Journal::Entry& entry)
    {
        m_Terminal.print(m_Session.m_Options.m_Json ? lineText(entryJson(entry), m_Session.simulated())
                                                    : entryLine(entry, m_Terminal.screen()));
    }

    void showStatus()
    {
        if (!m_ShowsStatus)
            return;
        const std::uint64_t now = TLX::Misc::monotonic();
        const Monitor& monitor = m_Watched.monitors().front();
        m_Forecast.update(monitor.pluginObject().m_UpdateCount, monitor.pollInterval(), now);
        const std::size_t drives = m_Drives.size();
        const std::size_t silent = silentInstances(m_Session.answers()).size();
        const auto sick = std::count_if(m_Drives.begin(), m_Drives.end(), isSick);
        m_Terminal.showStatus((m_Session.simulated() ? "Simulated: " : "") + std::to_string(drives) +
                              (drives == 1 ? " drive" : " drives") +
                              (sick == 0 ? "" : ", " + std::to_string(sick) + " unhealthy") +
                              (silent == 0 ? "" : ", " + std::to_string(silent) + " not answering") +
                              ", next poll at " + timeOfDayText(TLX::Misc::now() + m_Forecast.next() - now));
    }

    const Session& m_Session;
    Terminal& m_Terminal;
    const bool m_ShowsStatus;
    Watched m_Watched;
    PollForecast m_Forecast; ///< of the first plug-in
    std::uint64_t m_End = NEVER;
    std::vector<Drive> m_Drives; ///< from the last report of the drives
    std::vector<WatchedDrives> m_Plugins;
    std::set<std::string> m_Silent; ///< instances of the drives that did not answer in the last round
};

/**
 * Requests to end the program. Until `defer` is called a request ends it at once, because the first inventory
 * may wait for a drive that does not answer. After that a request ends every wait for drives.
 */
class ShortEnd
{
public:
    ShortEnd()
    {
        if (m_Over.Init(false, true) != TLX::Threading::WaitResult::Taken)
            throw Failure(ExitCode::RequestFailed, "The system has no event left for the program.");
    }

    ~ShortEnd()
    {
        m_Over.Set();
        if (m_Thread)
            (void)m_Thread->Wait();
    }
    ShortEnd(const ShortEnd&) = delete;
    ShortEnd& operator=(const ShortEnd&) = delete;

    /** Further calls change nothing. */
    void defer(std::shared_ptr<ParallelDrives> drives)
    {
        if (m_Thread)
            return;
        m_Termination.defer();
        m_Thread.emplace([this, drives = std::move(drives)] {
            constexpr std::uint32_t first = 1;
            if (TLX::Threading::CWaiter{&asked(), &m_Over}.Wait() == first)
                drives->stopWaiting();
        });
    }

    TLX::Threading::CEvent& asked() { return m_Termination.asked(); }

    bool isAsked()
    {
        return TLX::Threading::CWaiter{&asked()}.Wait(TLX::Threading::CWaitInterval(0)) !=
               TLX::Threading::WaitResult::TimedOut;
    }

private:
    Platform::TerminationRequest m_Termination; ///< before any thread
    TLX::Threading::CEvent m_Over;
    std::optional<TLX::Threading::CThread> m_Thread;
};

std::uint64_t endOf(const Options& options)
{
    return options.m_Seconds
               ? TLX::Misc::monotonic() + std::uint64_t{*options.m_Seconds} * MILLISECONDS_A_SECOND
               : NEVER;
}

void tellSilent(const Session& session)
{
    for (const DriveAnswer& answer : session.answers())
        if (isSilent(answer))
            session.m_Terminal.tell(std::string(shortDeviceName(answer.m_DeviceName)) + " " +
                                    silenceReason(answer, TLX::Misc::now()) + ".");
}

/**
 * Begins to watch as soon as a drive answers. Null when the program is asked to end before that. Throws
 * `Failure` when no drive has answered until `--for` is over.
 */
std::pair<std::unique_ptr<Watch>, std::uint64_t> beginWatch(const Session& session, ShortEnd& ending)
{
    // Nobody announces that a drive answers again.
    constexpr std::uint64_t patience = 10'000;
    TLX::Threading::CEvent announced;
    (void)announced.Init(false, false);
    const TLXX::CDeviceNotification notification(announced);
    for (std::optional<std::uint64_t> end;;) {
        try {
            auto begun = std::make_unique<Watch>(session);
            return {std::move(begun), end ? *end : endOf(session.m_Options)};
        } catch (const Failure& failure) {
            if (ending.isAsked())
                return {nullptr, 0};
            if (failure.exitCode() != ExitCode::NoHardware)
                throw;
            ending.defer(session.drives());
            if (!end) {
                end = endOf(session.m_Options);
                session.m_Terminal.tell(failure.what() + std::string(" Waiting for the first drive."));
                tellSilent(session);
            }
            if (TLX::Misc::monotonic() >= *end)
                throw;
        }
        const std::uint64_t now = TLX::Misc::monotonic();
        (void)TLX::Threading::CWaiter{&announced, &ending.asked()}.Wait(
            TLX::Threading::CWaitInterval(std::min(*end - std::min(now, *end), patience)));
        if (ending.isAsked())
            return {nullptr, 0};
    }
}

} // namespace

ExitCode watch(const Session& session)
{
    ShortEnd ending;
    const auto [watch, end] = beginWatch(session, ending);
    if (watch) {
        ending.defer(session.drives());
        watch->run(ending.asked(), end);
    }
    return ExitCode::Done;
}

} // namespace Host::Cli
