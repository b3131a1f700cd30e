#pragma once

#include <PI/Object.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace HostTest {

/** A property with a value of any kind. */
template<typename... Value>
PI::CProperty property(std::uint32_t id, std::uint32_t units, Value&&... value)
{
    PI::CProperty result(id, false);
    result.SetUnits(units);
    result.SetValue(std::forward<Value>(value)...);
    return result;
}

/** An adapter and its drive as a plug-in shows them; the drive's identifier follows the adapter's. */
struct DriveObjects
{
    DriveObjects(std::uint64_t id, const std::string& serial, const std::string& device);

    /** Removes a property from both. */
    void remove(std::uint32_t propertyId);

    PI::CObject m_Adapter;
    PI::CObject m_Drive;
};

/** A plug-in object, then all adapters, then all drives. */
std::vector<PI::CObject> topologyOf(const std::vector<DriveObjects>& drives);

} // namespace HostTest
