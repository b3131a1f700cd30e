#pragma once

#include "Records/Plugin.h"

#include <DatabaseORM/Storage.h>

#include <cstdint>

namespace NAMESPACE_Ostrel {

// The plug-in's own row, found by its name. The poll interval is in seconds. A failure of the database is
// traced and becomes `ERR_GENERAL_FAILURE`; other exceptions pass through. An update finds its row by its
// keys and does nothing when there is none.

std::uint32_t insertRow(const DatabaseORM::storage_t& storage, const CNVMePlugin& plugin,
                        std::uint32_t pollInterval);
std::uint32_t updateRow(const DatabaseORM::storage_t& storage, const CNVMePlugin& plugin,
                        std::uint32_t pollInterval);
std::uint32_t deletePluginRow(const DatabaseORM::storage_t& storage);

} // namespace NAMESPACE_Ostrel
