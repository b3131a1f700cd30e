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
    /** Sets the property's value. Returns false when the record has no value to show. */
    bool (*m_SetValue)(Record& record, PI::CProperty& property);
    /** Replaces the description's caption; 0 keeps it. */
    std::uint32_t m_Caption = 0;
};

/**
 * Fills `properties` with the property `propertyId`, or with all of them in the table's order; old content
 * goes.
 */
template<typename Record, std::size_t Rows>
void buildProperties(const CPropertyRow<Record> (&table)[Rows], Record& record, std::uint32_t propertyId,
                     std::vector<PI::CProperty>& properties)
{
    properties.clear();
    properties.reserve(propertyId == PI::ALL_PROPERTIES ? Rows : 1);
    for (const CPropertyRow<Record>& row : table) {
        if (propertyId != PI::ALL_PROPERTIES && propertyId != row.m_Description.propertyId)
            continue;
        PI::CProperty& property = properties.emplace_back();
        PI::CPluginHelper::GenerateCProperty(row.m_Description, property);
        if (!row.m_SetValue(record, property))
            properties.pop_back();
        else if (row.m_Caption != 0)
            property.SetNlsID(row.m_Caption);
    }
}

// Values that are just a member of the record.

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

/** A measured number. Such properties have sub-type 8. */
inline bool setMeasurement(float value, PI::CProperty& property)
{
    constexpr std::uint32_t MEASUREMENT = 8;
    property.SetValue(value);
    property.SetSubType(MEASUREMENT);
    return true;
}

} // namespace NAMESPACE_Ostrel
