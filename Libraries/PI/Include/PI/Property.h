#pragma once

#include <PI/Export.h>
#include <PI/PropertyId.h>

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace PI {

/** A row of a plug-in's property table; `CPluginHelper::GenerateCProperty` turns it into a property. */
struct _PROPERTY_DESCRIPTION
{
    std::uint32_t propertyId;
    std::uint32_t nlsId; ///< caption; 1 = none
    std::uint32_t attrA;
    std::uint32_t attrB;
    std::uint32_t attrC;
    std::uint32_t valueKind; ///< a `_VALUE_KIND`
    std::uint32_t units;     ///< a `_UNITS`
    std::uint32_t attrD;
};

/** An integer with its bounds. They only describe it: the value may be outside them. */
struct CBoundedValue
{
    std::int32_t m_Value = 0;
    std::int32_t m_Minimum = 0;
    std::int32_t m_Maximum = 0;
    std::int32_t m_Step = 0;

    friend bool operator==(const CBoundedValue&, const CBoundedValue&) = default;
};

/** A code whose text is in the catalogue, and the codes that may occur. */
struct CCodeValue
{
    std::uint32_t m_Code = 0;
    std::vector<std::uint32_t> m_Allowed;

    friend bool operator==(const CCodeValue&, const CCodeValue&) = default;
};

/** Several codes, and the codes that may occur. */
struct CCodeListValue
{
    std::vector<std::uint32_t> m_Codes;
    std::vector<std::uint32_t> m_Allowed;

    friend bool operator==(const CCodeListValue&, const CCodeListValue&) = default;
};

/** One property of an object: its meaning, its caption and units, and its value. A plain value type. */
class PI_EXPORT CProperty
{
public:
    using Value = std::variant<std::monostate, std::string, std::uint64_t, float, CBoundedValue, CCodeValue,
                               CCodeListValue>;

    CProperty() = default;

    /** A property without a description. Its caption, units and kind are set one by one. */
    CProperty(std::uint32_t propertyId, bool settable);

    // Each replaces the value, whatever its type was; description and kind stay.
    /** A text; null is an empty one. */
    void SetValue(const char* text);
    void SetValue(std::string text);
    /** An integer, in the property's units. */
    void SetValue(std::uint64_t number);
    /** A fraction, in the property's units. */
    void SetValue(float number);
    /** An integer with its bounds, which are not enforced. */
    void SetValue(std::int32_t value, std::int32_t minimum, std::int32_t maximum, std::int32_t step);
    /** A code. */
    void SetValue(std::uint32_t code, const std::vector<std::uint32_t>& allowed);
    /** Several codes. */
    void SetValue(const std::vector<std::uint32_t>& codes, const std::vector<std::uint32_t>& allowed);

    /**
     * Reads the bounded integer. Returns false, with the four untouched, when the value is of another type.
     */
    bool GetValue(std::int32_t& value, std::int32_t& minimum, std::int32_t& maximum,
                  std::int32_t& step) const;

    /** The value; empty until it is set. */
    const Value& GetValue() const { return m_Value; }

    void SetNlsID(std::uint32_t nlsId) { m_Description.nlsId = nlsId; }
    void SetKind(std::uint32_t kind) { m_Description.valueKind = kind; } ///< a `_VALUE_KIND`
    void SetUnits(std::uint32_t units) { m_Description.units = units; }
    void SetAttrC(std::uint32_t attribute) { m_Description.attrC = attribute; }
    void SetSubType(std::uint32_t subType) { m_SubType = subType; }
    void SetIconPathID(std::uint32_t iconPathId) { m_IconPathId = iconPathId; }

    std::uint32_t Id() const { return m_Description.propertyId; }
    std::uint32_t NlsID() const { return m_Description.nlsId; }
    std::uint32_t Units() const { return m_Description.units; }
    std::uint32_t Kind() const { return m_Description.valueKind; }
    std::uint32_t SubType() const { return m_SubType; }
    std::uint32_t IconPathID() const { return m_IconPathId; } ///< 0 = none
    bool Settable() const { return m_Settable; }

    /** The description, as it is after the replacements. */
    const _PROPERTY_DESCRIPTION& Description() const { return m_Description; }

private:
    friend class CPluginHelper;

    _PROPERTY_DESCRIPTION m_Description{0, 1, 1, 1, 0xFFFFFFFFU, KIND_TEXT, UNIT_NONE, 1};
    bool m_Settable = false;
    std::uint32_t m_SubType = 0;
    std::uint32_t m_IconPathId = 0;
    Value m_Value;
};

} // namespace PI
