#include <TLX/TrustedFile.h>

#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace TLX::Misc {

std::optional<std::filesystem::path> trustedTarget(const std::filesystem::path& path)
{
    return path;
}

std::optional<std::string> readTrustedFile(const std::filesystem::path& path)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    std::ifstream stream(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    return stream ? std::optional(std::move(text)) : std::nullopt;
}

} // namespace TLX::Misc
