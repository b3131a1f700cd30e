#pragma once

#include "Base/Failure.h"
#include "Host/Objects.h"
#include "Web/ServiceView.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace HostTest {

/** A service with what a test gives it. Safe from any thread. */
class FakeView : public Host::Web::IServiceView
{
public:
    std::shared_ptr<const Host::Cli::Snapshot> snapshot() const override
    {
        const std::scoped_lock guard(m_Lock);
        return m_Snapshot;
    }

    Host::Cli::ServiceFigures figures() const override
    {
        const std::scoped_lock guard(m_Lock);
        return m_Figures;
    }

    std::vector<Host::Journal::NumberedEntry> journal(std::uint64_t after, std::size_t limit) const override
    {
        const std::scoped_lock guard(m_Lock);
        if (!m_Figures.m_JournalFailure.empty())
            throw Host::Failure(Host::ExitCode::RequestFailed, m_Figures.m_JournalFailure);
        const auto begin =
            m_Entries.begin() + static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(after, m_Entries.size()));
        const auto left = static_cast<std::size_t>(m_Entries.end() - begin);
        return {begin, begin + static_cast<std::ptrdiff_t>(std::min(limit, left))};
    }

    void set(const std::string& object, const std::string& property, const std::string& value,
             Host::Web::WhenSet done) override
    {
        m_Set.push_back(object + " " + property + " " + value);
        m_OnSet(done);
    }

    /** The state after round `round` has these drives. */
    void publish(std::uint64_t round, const std::vector<DriveObjects>& drives)
    {
        auto snapshot = std::make_shared<const Host::Cli::Snapshot>(Host::ObjectStore(topologyOf(drives)),
                                                                    round, round * 1000);
        const std::scoped_lock guard(m_Lock);
        m_Snapshot = std::move(snapshot);
    }

    void change(const std::function<void(Host::Cli::ServiceFigures&)>& change)
    {
        const std::scoped_lock guard(m_Lock);
        change(m_Figures);
    }

    void addEntry(const std::string& text)
    {
        const std::scoped_lock guard(m_Lock);
        Host::Journal::NumberedEntry entry;
        entry.m_Number = ++m_Figures.m_LastEntry;
        entry.m_Entry.m_Text = text;
        entry.m_Entry.m_Key = "S";
        entry.m_Entry.m_Drive.m_Serial = "S";
        m_Entries.push_back(std::move(entry));
    }

    /** A new journal begins. */
    void forgetEntries()
    {
        const std::scoped_lock guard(m_Lock);
        m_Entries.clear();
        m_Figures.m_LastEntry = 0;
    }

    std::vector<std::string> m_Set; ///< object, property and value of each call
    /** Answers each call of `set`. */
    std::function<void(const Host::Web::WhenSet&)> m_OnSet = [](const Host::Web::WhenSet& done) {
        PI::CProperty property(PI::PROP_POLL_INTERVAL, true);
        property.SetValue(60, 2, 255, 1);
        done(&property, nullptr);
    };

private:
    mutable std::mutex m_Lock;
    std::shared_ptr<const Host::Cli::Snapshot> m_Snapshot =
        std::make_shared<const Host::Cli::Snapshot>(Host::ObjectStore({}), 0, 0);
    Host::Cli::ServiceFigures m_Figures;
    std::vector<Host::Journal::NumberedEntry> m_Entries;
};

} // namespace HostTest
