#include "Commands/WatchCommand.h"

#include "Base/Failure.h"
#include "Base/Platform.h"
#include "Base/Seconds.h"
#include "Commands/Session.h"
#include "Documents/Json.h"
#include "Facts/DriveEvent.h"
#include "Terminal/PollForecast.h"
#include "Terminal/StatusLine.h"

#include <TLX/Clock.h>
#include <TLX/WaitInterval.h>
#include <TLX/WaitResult.h>
#include <TLX/Waiter.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

namespace Host::Cli {
namespace {

constexpr std::uint64_t NEVER = std::numeric_limits<std::uint64_t>::max();

/** How often the plug-in polls, in milliseconds; 0 when it does not say. */
std::uint64_t pollInterval(const PI::CObject& plugin)
{
    const PI::CProperty* property = findProperty(plugin, PI::PROP_POLL_INTERVAL);
    const auto* seconds =
        property != nullptr ? std::get_if<PI::CBoundedValue>(&property->GetValue()) : nullptr;
    return seconds != nullptr
               ? static_cast<std::uint64_t>(std::max(seconds->m_Value, 0)) * MILLISECONDS_A_SECOND
               : 0;
}

class Watch
{
public:
    Watch(const Session& session, Platform::ResultChannel& results, const Screen& screen)
        : m_Session(session),
          m_Screen(screen),
          m_Status(results, session.m_Messages, results.showsColours() && !session.m_Options.m_Json),
          m_Watched(session)
    {
        if (session.m_Options.m_Seconds)
            m_End =
                TLX::Misc::monotonic() + std::uint64_t{*session.m_Options.m_Seconds} * MILLISECONDS_A_SECOND;
    }

    void run(TLX::Threading::CEvent& askedToEnd)
    {
        watchUntil(askedToEnd);
        std::exception_ptr failed;
        for (Monitor& monitor : m_Watched.monitors())
            try {
                end(monitor);
            } catch (const Failure&) {
                // The other plug-ins' last events are still to come.
                failed = std::current_exception();
            }
        if (failed)
            std::rethrow_exception(failed);
    }

private:
    void end(Monitor& monitor)
    {
        // What the last poll found is pending now.
        if (monitor.stop())
            report(monitor);
        else
            m_Session.m_Messages.tell("The plug-in did not end in time; a drive may not answer any more.");
    }

    void watchUntil(TLX::Threading::CEvent& askedToEnd)
    {
        constexpr std::uint32_t asked = 1;
        std::vector<TLX::Threading::CEvent*> events = {&askedToEnd};
        std::vector<Monitor*> callers;
        for (Monitor& monitor : m_Watched.monitors()) {
            events.push_back(&monitor.notified());
            callers.push_back(&monitor);
        }
        TLX::Threading::CWaiter waiter(events);
        for (;;) {
            showStatus();
            const std::uint32_t fired = waiter.Wait(TLX::Threading::CWaitInterval(patience()));
            if (fired == asked)
                return;
            if (fired > asked && fired <= asked + callers.size())
                report(*callers[fired - asked - 1]);
            else if (fired != TLX::Threading::WaitResult::TimedOut)
                throw Failure(ExitCode::RequestFailed,
                              "The system does not let the program wait for events.");
            else if (m_Status.shown())
                for (Monitor& monitor : m_Watched.monitors())
                    monitor.refresh();
            if (TLX::Misc::monotonic() >= m_End)
                return;
        }
    }

    /** How long there may be nothing to do, in milliseconds. */
    std::uint64_t patience() const
    {
        // Of clocks that count milliseconds in 32 bits none is asked for more.
        constexpr std::uint64_t longest = 3'600'000;
        const std::uint64_t now = TLX::Misc::monotonic();
        const std::uint64_t next = std::min(m_End, m_Status.shown() ? m_Forecast.next() : NEVER);
        return next <= now ? 0 : std::min(next - now, longest);
    }

    void report(Monitor& monitor)
    {
        std::vector<PI::CEvent> events = monitor.collect();
        std::vector<Drive> after = joinDrives(m_Watched.objects());
        for (const DriveEvent& event : withDrives(std::move(events), m_Drives, after))
            m_Status.printAbove(m_Session.m_Options.m_Json ? jsonLine(event) : eventLine(event, m_Screen));
        m_Drives = std::move(after);
    }

    std::string jsonLine(const DriveEvent& event) const
    {
        return lineText(eventJson(event), m_Session.simulated());
    }

    void showStatus()
    {
        if (!m_Status.shown())
            return;
        const std::uint64_t now = TLX::Misc::monotonic();
        const PI::CObject& plugin = m_Watched.monitors().front().pluginObject();
        m_Forecast.update(plugin.m_UpdateCount, pollInterval(plugin), now);
        const std::size_t drives = m_Drives.size();
        m_Status.show((m_Session.simulated() ? "Simulated: " : "") + std::to_string(drives) +
                      (drives == 1 ? " drive" : " drives") + ", next poll at " +
                      timeOfDayText(TLX::Misc::now() + m_Forecast.next() - now));
    }

    const Session& m_Session;
    const Screen& m_Screen;
    StatusLine m_Status;
    Watched m_Watched;
    PollForecast m_Forecast; ///< of the first plug-in
    std::uint64_t m_End = NEVER;
    std::vector<Drive> m_Drives = joinDrives(m_Watched.objects()); ///< as the last report found them
};

} // namespace

void watch(const Session& session, Platform::ResultChannel& results, const Screen& screen)
{
    Platform::TerminationRequest termination;
    Watch watch(session, results, screen);
    // A start that takes its time, such as one beside a drive that does not answer, needs no end of its own.
    termination.defer();
    watch.run(termination.asked());
}

} // namespace Host::Cli
