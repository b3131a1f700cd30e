#include "Facts/Measured.h"

#include "Facts/Silence.h"
#include "Plugins/AdapterIdentities.h"

#include <PI/StateCode.h>
#include <TLX/Clock.h>
#include <TLXX/IntelLogs.h>
#include <TLXX/NvmeQuery.h>

#include <algorithm>
#include <array>

namespace Host::Cli {
namespace {

// It is only known for the plug-in of this program which of its rows are constants. The upper bits of an
// object's identifier are the module number of its plug-in.
constexpr std::uint64_t MODULE = 313;
constexpr unsigned MODULE_SHIFT = 48;

// The plug-in reads vendor logs, and so the wear, only from drives of this maker.
constexpr char MAKER_WITH_LOGS[] = "INTEL";

/** Rows that the plug-in always shows and fills from the health log. */
constexpr std::array FROM_HEALTH_LOG = {PI::PROP_AVAILABLE_SPARE, PI::PROP_SPARE_THRESHOLD,
                                        PI::PROP_MEDIA_ERRORS};

/** Rows that the plug-in shows only when the drive's health log was read. */
constexpr std::array SIGNS_OF_HEALTH_LOG = {PI::PROP_TEMPERATURE, PI::PROP_DRIVE_TEMPERATURE,
                                            PI::PROP_POWER_ON_HOURS, PI::PROP_DATA_READ,
                                            PI::PROP_DATA_WRITTEN};

template<typename Ids>
bool hasAny(const PI::CObject& object, const Ids& ids)
{
    return std::any_of(ids.begin(), ids.end(),
                       [&](std::uint32_t id) { return findProperty(object, id) != nullptr; });
}

bool isOfInstalledPlugin(const PI::CObject& object)
{
    return object.m_ID >> MODULE_SHIFT == MODULE;
}

bool hasVendorLogs(const PI::CObject& adapter)
{
    return textOf(adapter, PI::PROP_VENDOR) == MAKER_WITH_LOGS;
}

bool isConstant(const PI::CObject& object, std::uint32_t propertyId)
{
    if (!isOfInstalledPlugin(object))
        return false;
    if (object.m_Type == PI::TYPE_PHYSICAL_DRIVE)
        return propertyId == PI::PROP_HEALTH_STATUS;
    if (object.m_Type != PI::TYPE_ADAPTER)
        return false;
    return propertyId == PI::PROP_SPARE_STATE ||
           (propertyId == PI::PROP_WEAR_STATE && !hasVendorLogs(object));
}

bool isCode(const PI::CProperty& property, std::uint32_t expected)
{
    const auto* code = std::get_if<PI::CCodeValue>(&property.GetValue());
    return code != nullptr && code->m_Code == expected;
}

/** When the health log was not read, a bad health comes from another log, and is true. */
bool comesFromHealthLog(const PI::CProperty& property)
{
    return std::find(FROM_HEALTH_LOG.begin(), FROM_HEALTH_LOG.end(), property.Id()) !=
               FROM_HEALTH_LOG.end() ||
           (property.Id() == PI::PROP_HEALTH_STATUS && isCode(property, PI::HEALTH_HEALTHY));
}

bool isUnreadWear(const ObjectStore& store, const PI::CObject& object, const PI::CProperty& property)
{
    return property.Id() == PI::PROP_WEAR_STATE && isCode(property, PI::WEAR_OK) &&
           isOfInstalledPlugin(object) && hasVendorLogs(object) &&
           !TLXX::lastVendorLog(diskPathOf(store, object), TLXX::INTEL_LEGACY_SMART_LOG_PAGE);
}

} // namespace

const PI::CObject* adapterOf(const ObjectStore& store, const PI::CObject& object)
{
    if (object.m_Type == PI::TYPE_ADAPTER)
        return &object;
    for (const std::uint64_t id : object.m_Parents) {
        const PI::CObject* parent = store.byId(id);
        if (parent != nullptr && parent->m_Type == PI::TYPE_ADAPTER)
            return parent;
    }
    return nullptr;
}

std::string diskPathOf(const ObjectStore& store, const PI::CObject& adapter)
{
    const TLXX::CControllerState* const system = store.controllerOf(adapter);
    return system != nullptr ? system->m_DeviceName : textOf(adapter, PI::PROP_DEVICE_NAME);
}

std::optional<bool> healthLogRead(const ObjectStore& store, const PI::CObject& object)
{
    const PI::CObject* adapter = adapterOf(store, object);
    if (adapter == nullptr || !hasAny(*adapter, FROM_HEALTH_LOG))
        return std::nullopt;
    const std::vector<const PI::CObject*> media = store.childrenOf(*adapter);
    return hasAny(*adapter, SIGNS_OF_HEALTH_LOG) ||
           std::any_of(media.begin(), media.end(),
                       [](const PI::CObject* medium) { return hasAny(*medium, SIGNS_OF_HEALTH_LOG); });
}

std::vector<std::uint8_t> unreadVendorLogs(const ObjectStore& store, const PI::CObject& adapter)
{
    std::vector<std::uint8_t> unread;
    if (!isOfInstalledPlugin(adapter) || !hasVendorLogs(adapter))
        return unread;
    const std::string path = diskPathOf(store, adapter);
    for (const std::uint8_t log :
         {TLXX::INTEL_TEMPERATURE_STATISTIC_LOG_PAGE, TLXX::INTEL_LEGACY_SMART_LOG_PAGE})
        if (!TLXX::lastVendorLog(path, log))
            unread.push_back(log);
    return unread;
}

Basis basisOf(const ObjectStore& store, const PI::CObject& object, const PI::CProperty& property)
{
    if (isConstant(object, property.Id()))
        return Basis::NotMeasured;
    const bool isUnread = isUnreadWear(store, object, property) ||
                          (comesFromHealthLog(property) && healthLogRead(store, object) == false);
    return isUnread ? Basis::NotRead : Basis::Measured;
}

ShownPlace shownPlaceOf(const ObjectStore& store, const PI::CObject& adapter)
{
    const std::optional<TLXX::CPciLocation> real = store.addressOf(adapter);
    std::optional<TLXX::CPciLocation> shown = pciLocation(adapter);
    if (!real || !shown || *shown == *real)
        return ShownPlace::Real;
    const bool hasNoSegment = shown->m_Segment == 0;
    shown->m_Segment = real->m_Segment;
    return hasNoSegment && *shown == *real ? ShownPlace::WithoutSegment : ShownPlace::Another;
}

std::vector<std::string> caveatsOf(const ObjectStore& store, const PI::CObject& object)
{
    std::vector<std::string> caveats;
    const PI::CObject* adapter = adapterOf(store, object);
    if (adapter == nullptr)
        return caveats;
    const DriveAnswer* answer = store.answerOf(*adapter);
    if (answer != nullptr && isSilent(*answer))
        caveats.push_back("The drive " + silenceReason(*answer, TLX::Misc::now()) +
                          ". The rows below are from its last answer.");
    const ShownPlace place = shownPlaceOf(store, *adapter);
    if (place != ShownPlace::Real)
        caveats.push_back("The controller is at " + store.addressOf(*adapter)->Text() + ". " +
                          (place == ShownPlace::WithoutSegment
                               ? "The rows below do not show its PCI segment."
                               : "The rows below show another place; \"ostrel doctor\" says why."));
    if (object.m_Type == PI::TYPE_ADAPTER && healthLogRead(store, object) == false)
        caveats.emplace_back("The health log of this drive was not read. The rows below show health, spare "
                             "blocks and errors of a new drive. They are not known for this one.");
    return caveats;
}

} // namespace Host::Cli
