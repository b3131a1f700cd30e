#include "Base/FileText.h"
#include "Base/Text.h"
#include "Commands/DoctorCommand.h"

#include <PI/ConfigFile.h>

#include <optional>
#include <string>

namespace Host::Cli {
namespace {

// The one setting there is, and what it may be.
constexpr char KEY[] = "PollInterval";
constexpr std::uint64_t SMALLEST = 2;
constexpr std::uint64_t LARGEST = 255;

Check wrong(const std::string& message, const std::string& remedy)
{
    return problem(ExitCode::RequestFailed, "settings", message, remedy);
}

Check checkPollInterval(const std::filesystem::path& file)
{
    PI::CConfigFile settings;
    settings.SetFileName(file.native());
    std::string text;
    if (settings.ReadKeyValue(KEY, text, -1, -1) != 0)
        return note("settings", file.string() + " has no line \"" + KEY +
                                    "=...\", the one setting there is, so the usual value holds");
    const std::string remedy = std::string("Write a whole number of seconds from ") +
                               std::to_string(SMALLEST) + " to " + std::to_string(LARGEST) +
                               " behind the '='.";
    const std::optional<std::uint64_t> seconds = parseNumber(text, 10);
    if (!seconds)
        return wrong(file.string() + ": " + KEY + " is \"" + text + "\", no whole number", remedy);
    if (*seconds < SMALLEST || *seconds > LARGEST)
        return wrong(file.string() + ": " + KEY + " is " + text + ", so the nearest possible value holds",
                     remedy);
    return ok("settings", file.string());
}

} // namespace

Check checkSettings(const std::filesystem::path& folder)
{
    const std::filesystem::path file = folder / "Ostrel.ini";
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
