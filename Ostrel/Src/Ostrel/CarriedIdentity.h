#pragma once

#include "Records/SerialIndex.h"

namespace NAMESPACE_Ostrel {

/**
 * Gives a fresh record the identifier and the change counter of the first published record with the same
 * serial number. Returns false and leaves the record untouched when there is none.
 */
template<typename Record>
bool carryIdentity(Record& record, const CSerialIndex<const Record>& published)
{
    const Record* const former = published.Find(record.m_SerialNumber);
    if (former == nullptr)
        return false;
    record.m_ID = former->m_ID;
    record.m_UpdateCount = former->m_UpdateCount;
    return true;
}

} // namespace NAMESPACE_Ostrel
