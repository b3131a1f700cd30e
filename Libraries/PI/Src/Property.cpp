#include <PI/Property.h>

#include <utility>

namespace PI {

CProperty::CProperty(std::uint32_t propertyId, bool settable) : m_Settable(settable)
{
    m_Description.propertyId = propertyId;
}

void CProperty::SetValue(const char* text)
{
    m_Value = std::string(text == nullptr ? "" : text);
}

void CProperty::SetValue(std::string text)
{
    m_Value = std::move(text);
}

void CProperty::SetValue(std::uint64_t number)
{
    m_Value = number;
}

void CProperty::SetValue(float number)
{
    m_Value = number;
}

void CProperty::SetValue(std::int32_t value, std::int32_t minimum, std::int32_t maximum, std::int32_t step)
{
    m_Value = CBoundedValue{value, minimum, maximum, step};
}

void CProperty::SetValue(std::uint32_t code, const std::vector<std::uint32_t>& allowed)
{
    m_Value = CCodeValue{code, allowed};
}

void CProperty::SetValue(const std::vector<std::uint32_t>& codes, const std::vector<std::uint32_t>& allowed)
{
    m_Value = CCodeListValue{codes, allowed};
}

bool CProperty::GetValue(std::int32_t& value, std::int32_t& minimum, std::int32_t& maximum,
                         std::int32_t& step) const
{
    const auto* bounded = std::get_if<CBoundedValue>(&m_Value);
    if (bounded == nullptr) {
        return false;
    }
    value = bounded->m_Value;
    minimum = bounded->m_Minimum;
    maximum = bounded->m_Maximum;
    step = bounded->m_Step;
    return true;
}

} // namespace PI
