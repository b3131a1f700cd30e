#include "Commands/ServeCommand.h"

#include "Base/Platform.h"
#include "Base/Repetition.h"
#include "Base/ServiceManager.h"
#include "Commands/Session.h"
#include "Commands/ShowCommand.h"
#include "Service/Service.h"

#include <cstdlib>
#include <memory>
#include <mutex>
#include <system_error>
#include <utility>

namespace Host::Cli {
namespace {

/** A data folder that lasts as long as this object. */
class PassingFolder
{
public:
    PassingFolder() : m_Path(Platform::newTemporaryFolder("ostrel-serve")) {}
    ~PassingFolder() { remove(); }
    PassingFolder(const PassingFolder&) = delete;
    PassingFolder& operator=(const PassingFolder&) = delete;

    const std::filesystem::path& path() const { return m_Path; }

    void remove() const noexcept
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_Path, ignored);
    }

private:
    const std::filesystem::path m_Path;
};

/** Passes each message on once. The same message is passed on again after an hour without it. */
Warn withoutRepetitions(Warn warn)
{
    struct Filter
    {
        std::mutex m_Lock;
        Repetition m_Told;
    };
    return [filter = std::make_shared<Filter>(), warn = std::move(warn)](const std::string& message) {
        const std::scoped_lock guard(filter->m_Lock);
        if (filter->m_Told.isNew(message))
            warn(message);
    };
}

/** Plug-ins that cannot be loaded are no matter of the drives, so the service does not begin with them. */
void checkPlugins(const Session& session)
{
    PluginSet plugins;
    for (const std::filesystem::path& file : session.m_Plugins)
        plugins.load(file);
}

} // namespace

ExitCode serve(Options options, Terminal& terminal)
{
    Platform::ServiceManager manager;
    Platform::TerminationRequest termination(Platform::HangUp::Reload);
    std::optional<PassingFolder> folder;
    if (options.m_Fleet && !options.m_Data)
        options.m_Data = folder.emplace().path();
    const Session session(options, terminal);
    checkPlugins(session);

    Service::ServicePlan plan;
    plan.m_Watch = session.watchPlan();
    plan.m_Watch.m_Warn = withoutRepetitions(session.warn());
    plan.m_Simulated = session.simulated();
    plan.m_SettingsFile = options.m_Settings.value_or(session.m_Folders.m_Data / "serve.ini");
    plan.m_MayBeMissing = !options.m_Settings;
    plan.m_Listen = options.m_Listen;
    plan.m_ShowText = [](const ObjectStore& store, const std::vector<const PI::CObject*>& objects,
                         const Web::TextForm& form) {
        return showText(store, objects,
                        {form.m_Columns == 0 ? std::nullopt : std::optional(form.m_Columns), form.m_Colours});
    };
    plan.m_Announce = [&terminal](const std::string& message) { terminal.announce(message); };
    plan.m_GiveUp = [&folder] {
        if (folder)
            folder->remove();
        std::_Exit(static_cast<int>(ExitCode::Done));
    };
    Service::Service service(std::move(plan), manager);
    termination.defer();
    service.run(termination);
    return ExitCode::Done;
}

} // namespace Host::Cli
