#pragma once

#include <TLXX/DeviceBackend.h>

#include <filesystem>
#include <functional>
#include <memory>

namespace Host {

/**
 * Calls `announce` from a thread of its own after each edit of `file`: when a program that wrote it has
 * closed it, and when another file took its place. Null if the system does not announce edits.
 */
std::unique_ptr<TLXX::IAnnouncements> announceEdits(const std::filesystem::path& file,
                                                    std::function<void()> announce);

} // namespace Host
