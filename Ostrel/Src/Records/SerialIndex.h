#pragma once

#include <string_view>
#include <unordered_map>
#include <vector>

namespace NAMESPACE_Ostrel {

/**
 * Finds records of a list by serial number without a walk over it. The list must outlive the index. Its
 * length and the serial numbers in it must not change meanwhile.
 */
template<typename Record>
class CSerialIndex
{
public:
    template<typename Records>
    explicit CSerialIndex(Records& records)
    {
        m_Records.reserve(records.size());
        for (Record& record : records)
            m_Records.try_emplace(record.m_SerialNumber,
                                  &record); // the first of several with one serial number stays
    }

    /** The first record in the list with this serial number; null when there is none. */
    Record* Find(std::string_view serialNumber) const
    {
        const auto found = m_Records.find(serialNumber);
        return found == m_Records.end() ? nullptr : found->second;
    }

private:
    std::unordered_map<std::string_view, Record*> m_Records;
};

} // namespace NAMESPACE_Ostrel
