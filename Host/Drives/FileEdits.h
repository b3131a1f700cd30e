#pragma once

#include <TLXX/DeviceBackend.h>

#include <filesystem>
#include <functional>
#include <memory>

namespace Host {

/**
 * Calls `announce` from a thread of its own after each edit of `file`. That is when a program that wrote to
 * it has closed it, and when another file replaced it. Returns null if the system does not report edits.
 */
std::unique_ptr<TLXX::IAnnouncements> announceEdits(const std::filesystem::path& file,
                                                    std::function<void()> announce);

} // namespace Host
