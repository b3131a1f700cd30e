#include "Platform.h"

#include <array>
#include <cstring>

#include <windows.h>

namespace TLXX {
namespace {

constexpr DWORD FIXED_INFORMATION_SIGNATURE = 0xFEEF04BD;

/** Whether `name` is a single name in a folder and cannot lead out of it. */
bool isPlainName(const std::string& name)
{
    return !name.empty() && name.find_first_of("\\/:*?\"<>|") == std::string::npos &&
           name.find('\0') == std::string::npos;
}

std::string driverFile(const std::string& module)
{
    std::array<char, MAX_PATH> folder{};
    const UINT length = GetSystemDirectoryA(folder.data(), folder.size());
    if (length == 0 || length >= folder.size())
        return {};
    return std::string(folder.data(), length) + "\\drivers\\" + module + ".sys";
}

std::string versionOf(const VS_FIXEDFILEINFO& information)
{
    std::string text;
    for (const DWORD half : {information.dwFileVersionMS, information.dwFileVersionLS})
        text += (text.empty() ? "" : ".") + std::to_string(HIWORD(half)) + "." + std::to_string(LOWORD(half));
    return text;
}

} // namespace

std::string Platform::moduleVersion(const std::string& module)
{
    if (!isPlainName(module))
        return {};
    const std::string file = driverFile(module);
    std::vector<std::uint8_t> resource(GetFileVersionInfoSizeA(file.c_str(), nullptr));
    void* found = nullptr;
    UINT length = 0;
    if (resource.empty() ||
        GetFileVersionInfoA(file.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()) == FALSE ||
        VerQueryValueA(resource.data(), "\\", &found, &length) == FALSE)
        return {};
    VS_FIXEDFILEINFO information{};
    if (found == nullptr || length < sizeof information)
        return {};
    std::memcpy(&information, found, sizeof information);
    return information.dwSignature == FIXED_INFORMATION_SIGNATURE ? versionOf(information) : std::string();
}

} // namespace TLXX
