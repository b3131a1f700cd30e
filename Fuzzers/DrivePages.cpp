// The pages of a drive, all the way: through the plug-in's records and properties to the program's facts and
// documents.
#include "Documents/Json.h"
#include "Facts/FactTable.h"
#include "Facts/Observation.h"
#include "Input.h"
#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"

#include <Database/Database.h>
#include <PI/AdapterID.h>
#include <TLXX/Diagnosis.h>

#include <nlohmann/json.hpp>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    [[maybe_unused]] static const bool keepsNothing = (keepNoRows(), true);
    Fuzz::Input input(data, size);
    TestSupport::CFakeDrive drive(1);
    input.fill(drive.m_Health);
    for (const std::uint8_t log : std::initializer_list<std::uint8_t>{0xC5, 0xCA, 0xDD})
        input.fill(drive.m_VendorLogs[log]);
    input.fill(drive.m_Namespace);
    input.fill(drive.m_Controller);
    TestSupport::CFakeDrives drives;
    drives.Add(drive);

    TestSupport::CPluginUnderTest plugin;
    std::vector<PI::CAdapterID> identities;
    if (plugin.Initialize(identities) != 0)
        return 0;
    std::vector<PI::CObject> objects;
    Fuzz::require(plugin.GetTopology(objects) == 0);
    const Host::ObjectStore store(std::move(objects), TLXX::controllerStates());
    for (const Host::Cli::Drive& each : Host::Cli::joinDrives(store))
        for (const Host::Cli::Fact& fact : Host::Cli::facts())
            (void)fact.m_Value(each);
    for (const PI::CObject& object : store.objects())
        (void)Host::Cli::documentText(Host::Cli::objectJson(store, object));
    (void)Host::Cli::documentText(Host::Cli::listJson(store));
    (void)Host::Cli::observe(store, 0);
    return 0;
}
