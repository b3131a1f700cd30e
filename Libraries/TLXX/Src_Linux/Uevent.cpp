#include <TLXX/Linux/Uevent.h>

namespace TLXX::Linux {
namespace {

/** The value of a field; empty when there is none. */
std::string_view field(std::string_view message, std::string_view key)
{
    while (!message.empty()) {
        const std::string_view line = message.substr(0, message.find('\0'));
        if (line.size() > key.size() && line.starts_with(key) && line[key.size()] == '=')
            return line.substr(key.size() + 1);
        message.remove_prefix(line.size() < message.size() ? line.size() + 1 : message.size());
    }
    return {};
}

bool isDisk(std::string_view message)
{
    const std::string_view path = field(message, "DEVPATH");
    const std::string_view name = path.substr(path.rfind('/') + 1);
    return field(message, "SUBSYSTEM") == "block" && field(message, "DEVTYPE") == "disk" &&
           name.starts_with("nvme");
}

} // namespace

bool announcesDrives(std::string_view message)
{
    const std::string_view action = field(message, "ACTION");
    const bool isController = field(message, "SUBSYSTEM") == "nvme";
    if (action == "add" || action == "remove")
        return isController || isDisk(message);
    return action == "change" && isController && !field(message, "NVME_AEN").empty();
}

} // namespace TLXX::Linux
