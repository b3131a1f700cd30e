#include "Plugins/Monitor.h"

#include "Base/Failure.h"
#include "Base/Time.h"
#include "Plugins/DataFolder.h"

#include <algorithm>
#include <utility>

namespace Host {

Monitor::Monitor(EquippedPlugin plugin, std::filesystem::path data, Warn warn)
    : m_Plugin(plugin.m_Plugin),
      m_Locations(std::move(plugin.m_Locations)),
      m_Data(std::move(data)),
      m_Warn(std::move(warn)),
      m_Objects(m_Plugin.topology())
{}

Monitor::~Monitor()
{
    try {
        if (m_Running)
            (void)stop();
    } catch (const std::exception& error) {
        m_Warn(error.what());
    }
}

void Monitor::start()
{
    m_Plugin.setAdapterIds(m_Identities.assign(m_Locations));
    m_Running = true;
}

std::vector<PI::CEvent> Monitor::collect()
{
    // If events came while the topology was read, it may show a newer state than the events. Then both are
    // read again.
    const std::uint64_t plugin = pluginObject().m_ID;
    std::vector<PI::CEvent> events = m_Plugin.collectEvents(plugin);
    // The plug-in answers only after the cycle that it is in, and what this cycle signalled is read below.
    notified().Reset();
    try {
        for (bool more = true; more;) {
            readObjects();
            std::vector<PI::CEvent> later = m_Plugin.collectEvents(plugin);
            more = !later.empty();
            std::move(later.begin(), later.end(), std::back_inserter(events));
        }
        nameNewcomers();
        m_Complaint.clear();
    } catch (const Failure& failure) {
        // The events are no longer pending in the plug-in, so they must not be lost here.
        complain(failure);
    }
    return events;
}

bool Monitor::renew()
{
    const bool any = !m_Plugin.collectEvents(pluginObject().m_ID).empty();
    // What a cycle signalled before this is read below.
    notified().Reset();
    try {
        readObjects();
        nameNewcomers();
        m_Complaint.clear();
    } catch (const Failure& failure) {
        complain(failure);
    }
    return any;
}

void Monitor::readObjects()
{
    m_Objects = ObjectStore(m_Plugin.topology());
    m_HasNewNames = false;
}

void Monitor::refresh()
{
    try {
        readObjects();
        m_Complaint.clear();
    } catch (const Failure& failure) {
        complain(failure);
    }
}

void Monitor::nameNewcomers()
{
    std::vector<PI::CAdapterID> fresh = m_Identities.assign(adapterLocations(m_Objects));
    if (!m_Running || fresh.empty())
        return;
    m_Plugin.setAdapterIds(std::move(fresh));
    m_HasNewNames = true;
    keepAdapterNumbers(m_Data, m_Warn);
}

void Monitor::complain(const Failure& failure)
{
    if (m_Complaint == failure.what())
        return;
    m_Complaint = failure.what();
    m_Warn(m_Complaint);
}

Ending Monitor::stop()
{
    m_Running = false;
    m_Ending = m_Plugin.deInitialize();
    return m_Ending;
}

std::uint64_t Monitor::pollInterval() const
{
    const PI::CProperty* property = findProperty(pluginObject(), PI::PROP_POLL_INTERVAL);
    const auto* seconds =
        property != nullptr ? std::get_if<PI::CBoundedValue>(&property->GetValue()) : nullptr;
    return seconds != nullptr
               ? static_cast<std::uint64_t>(std::max(seconds->m_Value, 0)) * MILLISECONDS_A_SECOND
               : 0;
}

const PI::CObject& Monitor::pluginObject() const
{
    const auto& objects = m_Objects.objects();
    const auto found = std::find_if(objects.begin(), objects.end(), [](const PI::CObject& object) {
        return object.m_Type == PI::TYPE_PLUGIN;
    });
    if (found == objects.end())
        throw Failure(ExitCode::RequestFailed, "The plug-in does not show an object of its own.");
    return *found;
}

} // namespace Host
