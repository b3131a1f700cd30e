#pragma once

#include <PI/ErrorCode.h>
#include <PI/IPluginApi.h>

#include <cstdint>

namespace HostTest {

/** What a plug-in's `createIf` does. One source has the exports of all these plug-ins. */
std::uint32_t create(IPLUGINAPI*& plugin);

} // namespace HostTest
