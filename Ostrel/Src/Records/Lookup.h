#pragma once

#include <algorithm>
#include <cstdint>

namespace NAMESPACE_Ostrel {

/** The first record of a list with this object identifier; null when there is none. */
template<typename Records>
auto findObject(Records& records, std::uint64_t objectID) -> decltype(records.data())
{
    const auto found = std::find_if(records.begin(), records.end(),
                                    [&](const auto& record) { return record.m_ID == objectID; });
    return found == records.end() ? nullptr : &*found;
}

} // namespace NAMESPACE_Ostrel
