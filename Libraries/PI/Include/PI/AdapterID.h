#pragma once

#include <PI/Export.h>

#include <cstdint>
#include <string>

namespace PI {

/** Where an adapter sits and which number the host gave it. */
class CAdapterID
{
public:
    /** The value of a number that was not assigned. */
    static constexpr std::uint32_t UNASSIGNED = 0xFFFFFFFFU;

    std::uint32_t m_Segment = 0;
    std::uint32_t m_Bus = 0;
    std::uint32_t m_Device = 0;
    std::uint32_t m_Function = 0;
    std::uint32_t m_AdapterNumber = UNASSIGNED;

    friend bool operator==(const CAdapterID&, const CAdapterID&) = default;
};

/**
 * Gives every adapter location of a host a number of its own, from 1. The same location always gets the same
 * number. One registry holds the numbers of the process. Safe from any thread.
 */
class PI_EXPORT CGlobalAdapterID
{
public:
    /** For an adapter of the host `hostName`. The location is all zeros until it is set. */
    explicit CGlobalAdapterID(std::string hostName);

    void SetSegment(std::int32_t segment) { m_Segment = segment; }
    void SetBus(std::int32_t bus) { m_Bus = bus; }
    void SetDevice(std::int32_t device) { m_Device = device; }
    void SetFunction(std::int32_t function) { m_Function = function; }

    /** Looks up the location's number, or takes the lowest free one. */
    void GenerateUniqueAdapterNumber();

    /** The number; -1 before `GenerateUniqueAdapterNumber`. */
    std::int32_t GetGlobalAdapterNumber() const { return m_Number; }

private:
    std::string m_HostName;
    std::int32_t m_Segment = 0;
    std::int32_t m_Bus = 0;
    std::int32_t m_Device = 0;
    std::int32_t m_Function = 0;
    std::int32_t m_Number = -1;
};

} // namespace PI
