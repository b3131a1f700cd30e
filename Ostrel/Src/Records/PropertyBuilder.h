#pragma once

#include <PI/PluginHelper.h>
#include <PI/Property.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace NAMESPACE_Ostrel {

/** One row of an object's property table. */
template<typename Record>
struct CPropertyRow
{
    PI::_PROPERTY_DESCRIPTION m_Description;
    /** Gives the property its value; false when the record has none to show. */
    bool (*m_SetValue)(Record& record, PI::CProperty& property);
    /** Takes the place of the description's caption; 0 leaves that. */
    std::uint32_t m_Caption = 0;
};

/** Fills `properties` anew, in the table's order, with the property `propertyId` or with all of them. */
template<typename Record, std::size_t Rows>
void buildProperties(const CPropertyRow<Record> (&table)[Rows], Record& record, std::uint32_t propertyId,
                     std::vector<PI::CProperty>& properties)
{
    properties.clear();
    for (const CPropertyRow<Record>& row : table) {
        if (propertyId != PI::ALL_PROPERTIES && propertyId != row.m_Description.propertyId)
            continue;
        PI::CProperty property;
        PI::CPluginHelper::GenerateCProperty(row.m_Description, property);
        if (!row.m_SetValue(record, property))
            continue;
        if (row.m_Caption != 0)
            property.SetNlsID(row.m_Caption);
        properties.push_back(property);
    }
}

// Values that need no more than a member of the record.

template<auto Member, typename Record>
bool setText(Record& record, PI::CProperty& property)
{
    property.SetValue(record.*Member);
    return true;
}

template<auto Member, typename Record>
bool setTextUnlessEmpty(Record& record, PI::CProperty& property)
{
    return !(record.*Member).empty() && setText<Member>(record, property);
}

template<auto Member, typename Record>
bool setNumber(Record& record, PI::CProperty& property)
{
    property.SetValue(static_cast<std::uint64_t>(record.*Member));
    return true;
}

/** A measured number: such properties are of sub-type 8. */
inline bool setMeasurement(float value, PI::CProperty& property)
{
    constexpr std::uint32_t MEASUREMENT = 8;
    property.SetValue(value);
    property.SetSubType(MEASUREMENT);
    return true;
}

} // namespace NAMESPACE_Ostrel
