#include "Facts/Drives.h"

#include "Facts/Silence.h"

#include <PI/PluginHelper.h>
#include <TLXX/IntelLogs.h>
#include <TLXX/NvmeQuery.h>

#include <algorithm>
#include <set>

namespace Host::Cli {
namespace {

/** Looks for a property at the adapter first, then at its drive. */
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

    /** The adapter has it for known model families, the drive has it for all others. */
    std::optional<float> temperature() const
    {
        const std::optional<float> adapters = value<float>(PI::PROP_TEMPERATURE);
        return adapters ? adapters : value<float>(PI::PROP_DRIVE_TEMPERATURE);
    }

private:
    const PI::CObject& m_Adapter;
    const PI::CObject* m_Drive;
};

/** These values come from the health log. Without one they are not known. */
void dropWhatNobodyRead(const ObjectStore& store, const PI::CObject& adapter, Drive& drive)
{
    drive.m_HealthLogRead = healthLogRead(store, adapter);
    if (drive.m_HealthLogRead != false)
        return;
    drive.m_Spare.reset();
    drive.m_SpareThreshold.reset();
    drive.m_MediaErrors.reset();
    const PI::CProperty* health = findProperty(adapter, PI::PROP_HEALTH_STATUS);
    if (health != nullptr && basisOf(store, adapter, *health) == Basis::NotRead)
        drive.m_Health = Health{std::nullopt, UNKNOWN_HEALTH};
}

void addPages(const ObjectStore& store, const PI::CObject& adapter, Drive& drive)
{
    if (const TLXX::CControllerState* system = store.controllerOf(adapter))
        drive.m_System = *system;
    const std::string path = diskPathOf(store, adapter);
    drive.m_HealthLog = TLXX::lastHealthLog(path);
    drive.m_TemperatureLog = TLXX::lastVendorLog(path, TLXX::INTEL_TEMPERATURE_STATISTIC_LOG_PAGE);
    drive.m_Identify = TLXX::lastIdentifyController(path);
}

void addEndOfLife(const ObjectStore& store, const PI::CObject& adapter, Drive& drive)
{
    drive.m_EndOfLifeDate = textOf(adapter, PI::PROP_END_OF_LIFE_DATE);
    const PI::CProperty* wear = findProperty(adapter, PI::PROP_WEAR_STATE);
    drive.m_DateCountsWear = wear == nullptr || basisOf(store, adapter, *wear) == Basis::Measured;
}

Drive join(const ObjectStore& store, const PI::CObject& adapter, const PI::CObject* medium)
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
    if (const std::optional<TLXX::CPciLocation> address = store.addressOf(adapter))
        drive.m_PciAddress = address->Text();
    drive.m_Place = shownPlaceOf(store, adapter);
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
    if (const DriveAnswer* answer = store.answerOf(adapter))
        drive.m_Answer = *answer;
    addPages(store, adapter, drive);
    addEndOfLife(store, adapter, drive);
    dropWhatNobodyRead(store, adapter, drive);
    return drive;
}

/** What the system says of a drive that has never answered. */
Drive unheard(const DriveAnswer& answer, const ObjectStore& store)
{
    Drive drive;
    drive.m_Device = answer.m_DeviceName;
    drive.m_Model = answer.m_Model;
    drive.m_Serial = answer.m_SerialNumber;
    drive.m_Firmware = answer.m_FirmwareRevision;
    drive.m_Driver = answer.m_Driver;
    drive.m_PciAddress = answer.m_Location ? answer.m_Location->Text() : "";
    drive.m_Answer = answer;
    const std::vector<TLXX::CControllerState>& states = store.controllers();
    const auto state = std::find_if(states.begin(), states.end(), [&](const TLXX::CControllerState& each) {
        return each.m_DeviceName == answer.m_DeviceName;
    });
    if (state != states.end())
        drive.m_System = *state;
    return drive;
}

void addUnheard(const ObjectStore& store, std::vector<Drive>& drives)
{
    std::set<const DriveAnswer*> shown;
    for (const PI::CObject& object : store.objects())
        if (object.m_Type == PI::TYPE_ADAPTER)
            shown.insert(store.answerOf(object));
    for (const DriveAnswer& answer : store.answers())
        if (isSilent(answer) && !shown.contains(&answer))
            drives.push_back(unheard(answer, store));
}

} // namespace

std::optional<double> bytesOf(const Amount& amount)
{
    constexpr PI::_UNITS steps[] = {PI::UNIT_BYTES, PI::UNIT_KIB, PI::UNIT_MIB, PI::UNIT_GIB,
                                    PI::UNIT_TIB,   PI::UNIT_PIB, PI::UNIT_EIB};
    double scale = 1;
    for (const PI::_UNITS unit : steps) {
        if (amount.m_Unit == unit)
            return static_cast<double>(amount.m_Value) * scale;
        scale *= 1024;
    }
    return std::nullopt;
}

bool reportsSpare(const Drive& drive)
{
    return drive.m_Spare != 0 || drive.m_SpareThreshold != 0;
}

std::optional<Drive> driveOf(const ObjectStore& store, const PI::CObject& object)
{
    if (object.m_Type != PI::TYPE_ADAPTER)
        return std::nullopt;
    const std::vector<const PI::CObject*> media = store.childrenOf(object);
    return join(store, object, media.empty() ? nullptr : media.front());
}

std::vector<Drive> joinDrives(const ObjectStore& store)
{
    std::vector<Drive> drives;
    drives.reserve(store.objects().size());
    for (const PI::CObject& object : store.objects()) {
        if (object.m_Type != PI::TYPE_ADAPTER)
            continue;
        const std::vector<const PI::CObject*> media = store.childrenOf(object);
        for (const PI::CObject* medium : media)
            drives.push_back(join(store, object, medium));
        if (media.empty())
            drives.push_back(join(store, object, nullptr));
    }
    addUnheard(store, drives);
    return drives;
}

} // namespace Host::Cli
