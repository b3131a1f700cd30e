#pragma once

#include "Records/Adapter.h"

#include <cstdint>

namespace NAMESPACE_Ostrel {

/** An adapter of which only the place is known. */
inline CNVMeAdapter adapterAt(std::int32_t segment, std::int32_t bus, std::int32_t device,
                              std::int32_t function)
{
    CNVMeAdapter adapter;
    adapter.m_Segment = segment;
    adapter.m_Bus = bus;
    adapter.m_Device = device;
    adapter.m_Function = function;
    return adapter;
}

} // namespace NAMESPACE_Ostrel
