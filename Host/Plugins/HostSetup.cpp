#include "Plugins/HostSetup.h"

#include "Base/Failure.h"
#include "Base/Text.h"
#include "Drives/MachineDrives.h"

#include <Database/Database.h>
#include <PI/ConfigFile.h>
#include <PI/LifeTimeData.h>
#include <TLX/LanguageSupport.h>
#include <TLX/TraceSink.h>
#include <TLXX/ThreadedSource.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace Host {
namespace {

void startTrace(const TraceOptions& trace)
{
    if (!trace.wanted() && !trace.m_File)
        return;
    try {
        TLX::Trace::setSink(trace.m_File ? TLX::Trace::rotatingFileSink(*trace.m_File)
                                         : TLX::Trace::standardErrorSink());
    } catch (const std::system_error& error) {
        const bool isUnread = error.code() == std::errc::no_such_device_or_address;
        throw Failure(ExitCode::WrongUsage,
                      "The trace file " + printable(trace.m_File->string()) + " cannot be written: " +
                          (isUnread ? "no program reads from it" : error.code().message()) + ".");
    }
    TLX::Trace::setDefaultMask(trace.m_Mask);
    for (const auto& [module, mask] : trace.m_ModuleMasks)
        TLX::Trace::setMask(module, mask);
}

/** Reads the drives of `fleet`, of `former`, or of this machine: the first of them that there is. */
std::shared_ptr<ParallelDrives> readSideBySide(const std::shared_ptr<SimulatedFleet>& fleet,
                                               const std::shared_ptr<TLXX::IDeviceBackend>& former,
                                               const std::optional<std::filesystem::path>& reader)
{
    const std::shared_ptr<TLXX::IDeviceBackend> other = fleet ? fleet : former;
    if (other)
        return std::make_shared<ParallelDrives>(other, std::make_unique<TLXX::CThreadedSource>(other));
    MachineDrives drives = machineDrives(reader);
    return std::make_shared<ParallelDrives>(TLXX::platformBackend(), std::move(drives.m_Source),
                                            drives.m_OwnRights ? Rights::Own : Rights::Readers);
}

} // namespace

bool TraceOptions::wanted() const
{
    return m_Mask != 0 || std::any_of(m_ModuleMasks.begin(), m_ModuleMasks.end(),
                                      [](const auto& entry) { return entry.second != 0; });
}

std::filesystem::path settingsFile(const std::filesystem::path& data)
{
    return data / "Ostrel.ini";
}

std::filesystem::path shareFolder(const std::filesystem::path& programFolder)
{
    return programFolder.parent_path() / "share" / "ostrel";
}

std::filesystem::path installedPlugin(const std::filesystem::path& programFolder)
{
    return programFolder.parent_path() / OSTREL_PLUGIN_FILE;
}

HostSetup::HostSetup(const HostFolders& folders, const TraceOptions& trace,
                     const std::optional<std::filesystem::path>& fleetFile, const Warn& warn)
    : m_Fleet(fleetFile ? std::make_shared<SimulatedFleet>(*fleetFile, warn) : nullptr),
      m_Former(TLXX::deviceBackend()),
      m_Drives(readSideBySide(m_Fleet, m_Former, folders.m_Reader)),
      m_Trace(trace)
{
    keepNoRows();
    if (folders.m_KeepsRows) {
        m_Claim.emplace(folders.m_Data, folders.m_Patience);
        if (m_Claim->granted())
            keepRows(folders.m_Data);
        restoreNumbers(folders.m_Data, warn);
    }
    TLX::Language_Support::CLanguageSupport::SetFolder(folders.m_Share);
    PI::SetLifeTimeFolder(folders.m_Share);
    PI::CConfigFile::SetFolder(folders.m_Data.native());
    warnOfSettings(folders.m_Data, warn);
    startTrace(trace);
    TLXX::setDeviceBackend(m_Drives);
}

HostSetup::~HostSetup()
{
    TLXX::setDeviceBackend(m_Former);
    TLX::Trace::setDefaultMask(0);
    for (const auto& [module, mask] : m_Trace.m_ModuleMasks)
        TLX::Trace::setMask(module, 0);
    TLX::Trace::setSink(nullptr);
    setDatabaseFile({});
}

} // namespace Host
