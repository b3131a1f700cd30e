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
    settings.SetFileName(file.native());
    std::string text;
    if (settings.ReadKeyValue(PI::POLL_INTERVAL_KEY, text, -1, -1) != 0)
        return note("settings", file.string() + " has no line \"" + PI::POLL_INTERVAL_KEY +
                                    "=...\", the one setting there is, so the usual value holds");
    const std::optional<std::uint32_t> number = PI::settingNumber(text);
    const std::uint32_t seconds = PI::pollIntervalOf(text);
    if (number == seconds)
        return ok("settings", file.string());
    return wrong(file.string() + ": " + PI::POLL_INTERVAL_KEY + " is \"" + text + "\", " +
                     (number ? "so the nearest possible value, " : "no whole number, so the usual value, ") +
                     std::to_string(seconds) + ", holds",
                 "Write a whole number of seconds from " + std::to_string(PI::MINIMUM_POLL_INTERVAL) +
                     " to " + std::to_string(PI::MAXIMUM_POLL_INTERVAL) + " behind the '='.");
}

} // namespace

Check checkSettings(const std::filesystem::path& folder)
{
    const std::filesystem::path file = settingsFile(folder);
    std::error_code error;
    if (!std::filesystem::exists(file, error) && !error)
        return ok("settings", "no " + file.string() + ", so the usual values hold");
    const std::optional<std::string> text = readFile(file);
    if (!text)
        return wrong(file.string() + " cannot be read, so the usual values hold",
                     "Make it a file that this user may read, or delete it.");
    if (text->find('\0') != std::string::npos)
        return wrong(file.string() + " holds zero bytes, as a write that was cut off leaves them; it is "
                                     "ignored, and the usual values hold",
                     "Write it again, or delete it.");
    return checkPollInterval(file);
}

} // namespace Host::Cli
