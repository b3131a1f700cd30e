#include "NvmeStatus.h"

#include <TLXX/NvmeQuery.h>

#include <cstdio>
#include <system_error>
#include <utility>

namespace TLXX {
namespace {

constexpr char NO_DEVICE_TEXT[] = "there is no such device";
constexpr char NO_ANSWER_TEXT[] = "the drive did not answer in time";

constexpr std::pair<std::uint32_t, const char*> OWN_TEXTS[] = {
    {STATUS_SUCCESS, "success"},
    {STATUS_SHORT_TRANSFER, "the drive sent less data than was asked for"},
    {STATUS_BAD_ANSWER, "the driver's answer makes no sense"},
    {STATUS_EMPTY_PAGE, "the page holds zeros alone"},
    {STATUS_NO_ANSWER, NO_ANSWER_TEXT},
    {STATUS_NO_DEVICE, NO_DEVICE_TEXT},
    {STATUS_NO_RESOURCES, "descriptors, threads or memory ran out"},
};

constexpr std::pair<std::errc, const char*> SYSTEM_TEXTS[] = {
    {std::errc::permission_denied, "permission denied"},
    {std::errc::operation_not_permitted, "permission denied"},
    {std::errc::no_such_file_or_directory, NO_DEVICE_TEXT},
    {std::errc::no_such_device, NO_DEVICE_TEXT},
    {std::errc::no_such_device_or_address, NO_DEVICE_TEXT},
    {std::errc::function_not_supported, "the device takes no NVMe commands"},
    {std::errc::inappropriate_io_control_operation, "the device takes no NVMe commands"},
    // When the Linux driver cancels a command after a time-out or in a reset, it reports the command as
    // interrupted.
    {std::errc::interrupted, NO_ANSWER_TEXT},
    {std::errc::timed_out, NO_ANSWER_TEXT},
    {std::errc::resource_unavailable_try_again, "the controller is not ready"},
    {std::errc::device_or_resource_busy, "the device is busy"},
    {std::errc::io_error, "input/output error"},
};

// Status code type and status code, without the retry bits above them.
constexpr std::uint32_t CODE_MASK = 0x7FF;

constexpr std::pair<std::uint32_t, const char*> DRIVE_TEXTS[] = {
    {0x001, "unknown command"},     {0x002, "invalid field in the command"},
    {0x004, "data transfer error"}, {0x006, "internal error"},
    {0x00B, "invalid namespace"},   {0x109, "the log page is not supported"},
};

std::error_code systemError(std::uint32_t status)
{
    return {static_cast<int>(status), std::system_category()};
}

std::string hexadecimal(std::uint32_t value)
{
    char text[16];
    (void)std::snprintf(text, sizeof text, "0x%X", value);
    return text;
}

std::string driveText(std::uint32_t status)
{
    std::string text = "the drive answered with status " + hexadecimal(status);
    for (const auto& [code, words] : DRIVE_TEXTS) {
        if ((status & CODE_MASK) == code)
            return text + " (" + words + ")";
    }
    return text;
}

std::string systemText(std::uint32_t status)
{
    const std::error_code error = systemError(status);
    for (const auto& [condition, words] : SYSTEM_TEXTS) {
        if (error == condition)
            return words;
    }
    return "system error " + std::to_string(status) + " (" + error.message() + ")";
}

} // namespace

std::string statusText(std::uint32_t status)
{
    for (const auto& [known, words] : OWN_TEXTS) {
        if (status == known)
            return words;
    }
    switch (status >> 16U) {
    case 0:
        return systemText(status);
    case STATUS_FROM_DRIVE >> 16U:
        return driveText(status & 0xFFFFU);
    default:
        return "unknown status " + hexadecimal(status);
    }
}

bool isPermissionStatus(std::uint32_t status)
{
    if (status > 0xFFFFU)
        return false;
    const std::error_code error = systemError(status);
    return error == std::errc::permission_denied || error == std::errc::operation_not_permitted;
}

} // namespace TLXX
