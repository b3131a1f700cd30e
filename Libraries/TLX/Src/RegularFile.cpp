#include <TLX/RegularFile.h>

#include <system_error>

namespace TLX::Misc {

bool isSpecialFile(const std::filesystem::path& file)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

} // namespace TLX::Misc
