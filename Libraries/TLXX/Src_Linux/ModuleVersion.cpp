#include "Attribute.h"
#include "DeviceTable.h"
#include "Platform.h"

#include <system_error>

#include <sys/utsname.h>

namespace TLXX {
namespace {

namespace fs = std::filesystem;

/** Whether `name` is a single name in a folder and cannot lead out of it. */
bool isPlainName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

/** A driver without a version of its own has the version of the kernel that it came with. */
std::string kernelRelease()
{
    utsname system{};
    return ::uname(&system) == 0 ? system.release : "";
}

std::string readVersion(const std::string& module)
{
    const std::string root = Linux::deviceTable().Root().native();
    const std::string folder = root + "/module/" + module;
    if (std::string version = Linux::readAttribute((folder + "/version").c_str()); !version.empty())
        return version;
    std::error_code error;
    // A driver that is built into the kernel may be missing among the modules.
    if (fs::exists(folder, error) || fs::exists(root + "/bus/pci/drivers/" + module, error))
        return kernelRelease();
    return {};
}

} // namespace

std::string Platform::moduleVersion(const std::string& module)
{
    return isPlainName(module) ? Linux::deviceTable().DriverVersion(module, readVersion) : std::string();
}

} // namespace TLXX
