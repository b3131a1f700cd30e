#include "Facts/Drives.h"

#include "Plugins/AdapterIdentities.h"

#include <PI/PluginHelper.h>

#include <utility>

namespace Host::Cli {
namespace {

/** Looks a property up on the adapter first, then on its drive. */
class Pair
{
public:
    Pair(const PI::CObject& adapter, const PI::CObject* drive) : m_Adapter(adapter), m_Drive(drive) {}

    template<typename Value>
    const Value* find(std::uint32_t propertyId) const
    {
        const PI::CProperty* property = findProperty(m_Adapter, propertyId);
        if (property == nullptr && m_Drive != nullptr)
            property = findProperty(*m_Drive, propertyId);
        return property != nullptr ? std::get_if<Value>(&property->GetValue()) : nullptr;
    }

    std::string text(std::uint32_t propertyId) const
    {
        const auto* text = find<std::string>(propertyId);
        return text != nullptr ? *text : std::string();
    }

    template<typename Value>
    std::optional<Value> value(std::uint32_t propertyId) const
    {
        const auto* value = find<Value>(propertyId);
        return value != nullptr ? std::optional(*value) : std::nullopt;
    }

    std::optional<std::int32_t> bounded(std::uint32_t propertyId) const
    {
        const auto* value = find<PI::CBoundedValue>(propertyId);
        return value != nullptr ? std::optional(value->m_Value) : std::nullopt;
    }

    std::optional<Amount> amount(std::uint32_t propertyId) const
    {
        const PI::CProperty* property = findProperty(m_Adapter, propertyId);
        const auto* value = property != nullptr ? std::get_if<float>(&property->GetValue()) : nullptr;
        return value != nullptr ? std::optional(Amount{*value, property->Units()}) : std::nullopt;
    }

    /** The adapter has it for the model families it knows, the drive for all others. */
    std::optional<float> temperature() const
    {
        const std::optional<float> adapters = value<float>(PI::PROP_TEMPERATURE);
        return adapters ? adapters : value<float>(PI::PROP_DRIVE_TEMPERATURE);
    }

private:
    const PI::CObject& m_Adapter;
    const PI::CObject* m_Drive;
};

/** Empty when all is 0: a location that was not found looks like that, and no drive sits there. */
std::string pciAddress(const PI::CObject& adapter)
{
    const std::optional<TLXX::CPciLocation> location = pciLocation(adapter);
    return location && *location != TLXX::CPciLocation{} ? location->Text() : std::string();
}

/**
 * Plug-ins show a drive whose health log was not read without temperature and counters, but with the spare,
 * errors and health of a new one, for no warning was heard. None of that is known.
 */
void dropWhatNobodyRead(Drive& drive)
{
    if (drive.m_Temperature || drive.m_PowerOnHours || drive.m_DataRead || drive.m_DataWritten)
        return;
    drive.m_Spare.reset();
    drive.m_SpareThreshold.reset();
    drive.m_MediaErrors.reset();
    // What it was found to suffer from stays true, for that came from another log.
    if (drive.m_Health && drive.m_Reasons.empty())
        drive.m_Health = Health{std::nullopt, "Unknown"};
}

Drive join(const PI::CObject& adapter, const PI::CObject* medium)
{
    const Pair pair(adapter, medium);
    Drive drive;
    drive.m_AdapterId = adapter.m_ID;
    if (medium != nullptr)
        drive.m_DriveId = medium->m_ID;
    drive.m_Name = textOf(adapter, PI::PROP_NAME);
    drive.m_Device = pair.text(PI::PROP_DEVICE_NAME);
    drive.m_Vendor = pair.text(PI::PROP_VENDOR);
    drive.m_Model = pair.text(PI::PROP_MODEL);
    drive.m_Serial = pair.text(PI::PROP_SERIAL_NUMBER);
    drive.m_Firmware = pair.text(PI::PROP_FIRMWARE);
    drive.m_Location = pair.text(PI::PROP_LOCATION);
    drive.m_PciAddress = pciAddress(adapter);
    drive.m_Driver = pair.text(PI::PROP_DRIVER);
    drive.m_DriverVersion = pair.text(PI::PROP_DRIVER_VERSION);
    drive.m_CapacityMiB = pair.value<std::uint64_t>(PI::PROP_CAPACITY);
    drive.m_BlockSize = pair.value<std::uint64_t>(PI::PROP_BLOCK_SIZE);
    drive.m_Temperature = pair.temperature();
    drive.m_Wear = pair.bounded(PI::PROP_ENDURANCE_USED);
    if (const auto* health = pair.find<PI::CCodeValue>(PI::PROP_HEALTH_STATUS))
        drive.m_Health = Health{health->m_Code, PI::PropertyValueToString(health->m_Code)};
    if (const auto* reasons = pair.find<PI::CCodeListValue>(PI::PROP_STATUS_REASONS))
        for (const std::uint32_t code : reasons->m_Codes)
            drive.m_Reasons.push_back({code, PI::PropertyValueToString(code)});
    drive.m_Spare = pair.bounded(PI::PROP_AVAILABLE_SPARE);
    drive.m_SpareThreshold = pair.bounded(PI::PROP_SPARE_THRESHOLD);
    drive.m_DataRead = pair.amount(PI::PROP_DATA_READ);
    drive.m_DataWritten = pair.amount(PI::PROP_DATA_WRITTEN);
    drive.m_PowerOnHours = pair.value<std::uint64_t>(PI::PROP_POWER_ON_HOURS);
    drive.m_MediaErrors = pair.value<std::uint64_t>(PI::PROP_MEDIA_ERRORS);
    dropWhatNobodyRead(drive);
    return drive;
}

} // namespace

std::vector<Drive> joinDrives(const ObjectStore& store)
{
    std::vector<Drive> drives;
    for (const PI::CObject& object : store.objects()) {
        if (object.m_Type != PI::TYPE_ADAPTER)
            continue;
        const std::vector<const PI::CObject*> media = store.childrenOf(object);
        for (const PI::CObject* medium : media)
            drives.push_back(join(object, medium));
        if (media.empty())
            drives.push_back(join(object, nullptr));
    }
    return drives;
}

} // namespace Host::Cli
