#include "Base/FileText.h"
#include "Commands/DoctorCommand.h"

#include <PI/ConfigFile.h>
#include <PI/PollInterval.h>

#include <optional>
#include <string>

namespace Host::Cli {
namespace {

Check wrong(const std::string& message, const std::string& remedy)
{
    return problem(ExitCode::RequestFailed, "settings", message, remedy);
}

Check checkPollInterval(const std::filesystem::path& file)
{
    PI::CConfigFile settings;
    // The settings' own folder would be put before a relative path.
    settings.SetFileName(std::filesystem::absolute(file).native());
    std::string text;
    if (settings.ReadKeyValue(PI::POLL_INTERVAL_KEY, text, -1, -1) != 0)
        return note("settings", file.string() + " has no line \"" + PI::POLL_INTERVAL_KEY +
                                    "=...\", which is the only setting, so the default is used");
    const std::optional<std::uint32_t> number = PI::settingNumber(text);
    const std::uint32_t seconds = PI::pollIntervalOf(text);
    if (number == seconds)
        return ok("settings", file.string());
    return wrong(
        file.string() + ": " + PI::POLL_INTERVAL_KEY + " is \"" + text + "\", " +
            (number ? "so the nearest possible value, " : "which is no whole number, so the default, ") +
            std::to_string(seconds) + ", is used",
        "Write a whole number of seconds from " + std::to_string(PI::MINIMUM_POLL_INTERVAL) + " to " +
            std::to_string(PI::MAXIMUM_POLL_INTERVAL) + " after the '='.");
}

} // namespace

Check checkSettings(const std::filesystem::path& folder)
{
    const std::filesystem::path file = settingsFile(folder);
    std::error_code error;
    if (!std::filesystem::exists(file, error) && !error)
        return ok("settings", "no " + file.string() + ", so the defaults are used");
    const std::optional<std::string> text = readFile(file);
    if (!text)
        return wrong(file.string() + " cannot be read, so the defaults are used",
                     "Make it a file that this user may read, or delete it.");
    if (text->find('\0') != std::string::npos)
        return wrong(file.string() +
                         " contains zero bytes, probably because writing it was interrupted; it is "
                         "ignored, and the defaults are used",
                     "Write it again, or delete it.");
    return checkPollInterval(file);
}

} // namespace Host::Cli
