#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>

namespace PI {

/** Where an adapter sits within its host: segment, bus, device, function. */
using AdapterLocation = std::array<std::int32_t, 4>;

/** The numbers of the locations of each host. */
using AdapterNumbers = std::map<std::string, std::map<AdapterLocation, std::int32_t>>;

/** The numbers that a host's adapters may still get, from the lowest. */
class CFreeNumbers
{
public:
    explicit CFreeNumbers(const std::map<AdapterLocation, std::int32_t>& taken);
    std::int32_t Take();

private:
    std::set<std::int32_t> m_Taken; ///< the numbers in use when this was made
    std::int32_t m_Next = 1;        ///< all below are taken
};

/** The process's numbers of adapter locations, counted from 1 on each host. Safe from any thread. */
class CAdapterRegistry
{
public:
    /** The registry that all of the process shares. */
    static CAdapterRegistry& Instance();

    /** The location's number; a location that has none gets the lowest free one. */
    std::int32_t Number(const std::string& hostName, const AdapterLocation& location);

    AdapterNumbers Numbers();
    void Replace(AdapterNumbers numbers);

private:
    std::mutex m_Lock;
    AdapterNumbers m_Numbers;
    std::map<std::string, CFreeNumbers> m_Free; ///< only hosts that have asked for a number
};

} // namespace PI
