// The smallest useful host. It replaces the machine by a drive of its own, loads the installed plug-in and
// prints what the plug-in reports of the drive.
#include "Load.h"

#include <Database/Database.h>
#include <PI/ErrorCode.h>
#include <PI/IPluginApi.h>
#include <PI/LifeTimeData.h>
#include <PI/PluginHelper.h>
#include <TLX/LanguageSupport.h>
#include <TLXX/DeviceBackend.h>

#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

constexpr std::uint32_t REFUSED = 1;

template<typename Field>
void fill(Field& field, const std::string& text)
{
    std::fill(field.begin(), field.end(), ' ');
    std::copy(text.begin(), text.end(), field.begin());
}

/** A machine with one drive, or with none. */
class OneDrive : public TLXX::IDeviceBackend
{
public:
    explicit OneDrive(bool present) : m_Present(present) {}

    std::vector<TLXX::CDeviceEntry> Enumerate(const TLXX::DeviceWalk&) override
    {
        return m_Present ? std::vector<TLXX::CDeviceEntry>{{"/dev/tiny0", "tiny"}}
                         : std::vector<TLXX::CDeviceEntry>();
    }

    std::uint32_t IdentifyController(const std::string&, TLXX::NVME_IDENTIFY_CONTROLLER& controller) override
    {
        controller = {};
        controller.VID = 0x1234;
        fill(controller.SN, "CONSUMER-1");
        fill(controller.MN, "Consumer Drive");
        fill(controller.FR, "1.0");
        return 0;
    }

    std::uint32_t IdentifyNamespace(const std::string&, TLXX::NVME_IDENTIFY_NAMESPACE& name_space) override
    {
        name_space = {};
        name_space.NSZE = 2U * 1024 * 1024;
        name_space.LBAF[0].LBADS = 9;
        return 0;
    }

    std::uint32_t SmartHealthLog(const std::string&, TLXX::NVME_SMART_HEALTH_INFORMATION_LOG&) override
    {
        return REFUSED;
    }

    std::uint32_t VendorLogPage(const std::string&, std::uint8_t, TLXX::VendorLogPage&) override
    {
        return REFUSED;
    }

    std::optional<TLXX::CPciLocation> Location(std::uint32_t number) override
    {
        return m_Present && number == 1 ? std::optional(TLXX::CPciLocation{0, 7, 0, 0}) : std::nullopt;
    }

    std::string ModuleVersion(const std::string&) override { return "1.0"; }

private:
    bool m_Present;
};

void print(const PI::CObject& object)
{
    std::cout << PI::PropertyValueToString(object.m_Type) << '\n';
    for (const PI::CProperty& property : object.m_Properties)
        if (const auto* text = std::get_if<std::string>(&property.GetValue()); text && property.NlsID() > 1)
            std::cout << "  " << PI::PropertyValueToString(property.NlsID()) << ": " << *text << '\n';
}

/** Loads the plug-in on such a machine, prints its objects, and returns the results of requests 1 and 4. */
std::uint32_t inventory(bool present)
{
    TLXX::setDeviceBackend(std::make_shared<OneDrive>(present));
    const auto createIf = reinterpret_cast<CreateIfFunction>(loadSymbol(OSTREL_PLUGIN, "createIf"));
    const auto releaseIf = reinterpret_cast<ReleaseIfFunction>(loadSymbol(OSTREL_PLUGIN, "releaseIf"));
    IPLUGINAPI* plugin = nullptr;
    if (createIf(&plugin) != PI::ERR_SUCCESS || plugin->m_Version != IPLUGINAPI::VERSION)
        throw std::runtime_error("the plug-in does not fit");
    std::cout << "module " << plugin->m_Module << '\n';

    PI::CRequestData adapters = std::vector<PI::CAdapterID>();
    std::uint32_t result = plugin->Request(PI::REQUEST_INITIALIZE, 0, adapters);
    PI::CRequestData objects = std::vector<PI::CObject>();
    if (result == PI::ERR_SUCCESS)
        result = plugin->Request(PI::REQUEST_GET_TOPOLOGY, 0, objects);
    for (const PI::CObject& object : std::get<std::vector<PI::CObject>>(objects))
        print(object);
    releaseIf(&plugin);
    return result;
}

} // namespace

int main()
{
    try {
        TLX::Language_Support::CLanguageSupport::SetFolder(OSTREL_SHARE_FOLDER);
        PI::SetLifeTimeFolder(OSTREL_SHARE_FOLDER);
        const std::uint32_t one = inventory(true);
        std::cout << "result " << one << '\n';
        for (const std::string& value : getDatabasePointer()->m_Access->query("SELECT SerialNumber FROM PD"))
            std::cout << "row " << value << '\n';
        const std::uint32_t none = inventory(false);
        std::cout << "result " << none << '\n';
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
