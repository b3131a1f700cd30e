#pragma once

#include <algorithm>
#include <vector>

namespace NAMESPACE_Ostrel {

/**
 * Gives a freshly scanned record the identifier and the change counter of the first published record with its
 * serial number. Returns false, with the record untouched, when there is none.
 */
template<typename Record>
bool carryIdentity(Record& record, const std::vector<Record>& published)
{
    const auto former = std::find_if(published.begin(), published.end(), [&](const Record& candidate) {
        return candidate.m_SerialNumber == record.m_SerialNumber;
    });
    if (former == published.end())
        return false;
    record.m_ID = former->m_ID;
    record.m_UpdateCount = former->m_UpdateCount;
    return true;
}

} // namespace NAMESPACE_Ostrel
