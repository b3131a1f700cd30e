#include "Drives/FileEdits.h"

namespace Host {

// Here edits are only found when the plug-in polls.
std::unique_ptr<TLXX::IAnnouncements>
announceEdits(const std::filesystem::path& /*file*/,
              std::function<void()> /*announce*/) // NOLINT(performance-unnecessary-value-param)
{
    return nullptr;
}

} // namespace Host
