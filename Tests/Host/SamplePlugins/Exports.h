#pragma once

#include <PI/ErrorCode.h>
#include <PI/IPluginApi.h>

#include <cstdint>

namespace HostTest {

/** What a plug-in's `createIf` does; the exports stand in one source for all of these plug-ins. */
std::uint32_t create(IPLUGINAPI*& plugin);

} // namespace HostTest
