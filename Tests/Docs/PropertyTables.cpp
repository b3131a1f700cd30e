#include "OstrelAdapter/Properties.h"
#include "OstrelPhysicalDrive/Properties.h"
#include "Records/Health.h"
#include "Support/PluginUnderTest.h"
#include "Tables.h"

#include <PI/PluginHelper.h>
#include <TLX/FastMutex.h>
#include <TLX/WaitResult.h>

#include <span>
#include <stdexcept>
#include <utility>
#include <variant>

namespace DocsTest {
namespace {

using namespace NAMESPACE_Ostrel;
using TestSupport::CPluginUnderTest;

std::string kindText(std::uint32_t kind)
{
    switch (kind) {
    case PI::KIND_TEXT:
        return "text";
    case PI::KIND_CODE:
        return "code";
    case PI::KIND_NUMBER:
        return "number";
    case PI::KIND_BOUNDED:
        return "bounded";
    case PI::KIND_CODES:
        return "codes";
    case PI::KIND_FLOAT:
        return "float";
    default:
        throw std::runtime_error("a property is of an unknown kind");
    }
}

/** What the kind of a value tells about it: its codes or its bounds. */
std::string expectation(const PI::CProperty& property)
{
    std::vector<std::uint32_t> allowed;
    if (const auto* single = std::get_if<PI::CCodeValue>(&property.GetValue()))
        allowed = single->m_Allowed;
    else if (const auto* several = std::get_if<PI::CCodeListValue>(&property.GetValue()))
        allowed = several->m_Allowed;
    else if (const auto* bounded = std::get_if<PI::CBoundedValue>(&property.GetValue()))
        return std::to_string(bounded->m_Minimum) + " to " + std::to_string(bounded->m_Maximum);
    std::string text;
    for (const std::uint32_t each : allowed)
        text += (text.empty() ? "" : ", ") + coded(each);
    return text;
}

Row propertyRow(const PI::CProperty& property, std::string note)
{
    const bool captioned = property.NlsID() > 1;
    return {std::to_string(property.Id()),
            captioned ? coded(property.NlsID()) : "",
            kindText(property.Kind()),
            property.Units() > PI::UNIT_NONE ? catalogueText(property.Units()) : "",
            expectation(property),
            std::move(note)};
}

const Row PROPERTY_TITLES = {"Property", "Caption", "Kind", "Unit", "Codes or bounds", "Remarks"};

/** `known` has a value for every row. `unknown` has a value for those that are always present. */
template<typename Record, typename Plain>
std::string properties(std::span<const CPropertyRow<Record>> descriptions, Plain known, Plain unknown)
{
    std::vector<Row> rows;
    for (const CPropertyRow<Record>& description : descriptions) {
        PI::CProperty property;
        PI::CPluginHelper::GenerateCProperty(description.m_Description, property);
        const std::uint32_t tabledUnit = property.Units();
        const bool always = description.m_SetValue(unknown, property);
        if (!description.m_SetValue(known, property))
            throw std::runtime_error("no record shows property " + std::to_string(property.Id()));
        if (description.m_Caption != 0)
            property.SetNlsID(description.m_Caption);
        std::string note = always ? "" : "left out when there is nothing to show";
        if (property.Units() != tabledUnit) {
            property.SetUnits(tabledUnit);
            note += "; its unit suits the amount";
        }
        rows.push_back(propertyRow(property, note));
    }
    return table(PROPERTY_TITLES, rows);
}

} // namespace

std::string adapterProperties()
{
    CNVMeAdapter known;
    known.m_Model = "INTEL SSDPED";
    known.m_FirmwareRevision = known.m_VendorTag = known.m_DriverVersion = "x";
    known.m_Temperature = 1;
    known.m_PowerOnHours = known.m_DataUnitsRead = known.m_DataUnitsWritten = known.m_LifetimeRating = 1;
    known.m_HealthReasons = {PI::REASON_SPARE_LOW};
    CNVMeAdapter unknown;
    return properties(adapterPropertyTable(), known, unknown);
}

std::string driveProperties()
{
    CNVMePhysicalDrive known;
    known.m_Temperature = 1;
    return properties(physicalDrivePropertyTable(), known, CNVMePhysicalDrive());
}

std::string pluginProperties()
{
    CPluginUnderTest plugin;
    if (plugin.m_DataLock.Init() != TLX::Threading::WaitResult::Taken)
        throw std::runtime_error("no lock");
    const TLX::Threading::CScopedGuard guard(plugin.m_DataLock);
    std::vector<PI::CProperty> shown;
    (void)plugin.GetPluginProperties(plugin.m_Plugin, shown, PI::ALL_PROPERTIES);
    std::vector<Row> rows;
    for (const PI::CProperty& property : shown)
        rows.push_back(propertyRow(property, property.Settable() ? "can be set" : ""));
    return table(PROPERTY_TITLES, rows);
}

} // namespace DocsTest
