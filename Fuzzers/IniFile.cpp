// A settings file of any content, a key and a value. What was written is read back, and other keys stay as
// they were.
#include "Input.h"
#include "Support/TemporaryFolder.h"

#include <PI/ConfigFile.h>

#include <fstream>
#include <string>

namespace {

constexpr char OTHER_KEY[] = "PollInterval";

std::string textOf(std::span<const std::uint8_t> bytes)
{
    return {bytes.begin(), bytes.end()};
}

std::string valueOf(const PI::CConfigFile& file, const std::string& key)
{
    std::string value = "none";
    (void)file.ReadKeyValue(key, value, -1, -1);
    return value;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const TestSupport::CTemporaryFolder folder;
    const std::string path = (folder.Path() / "Fuzz.ini").string();
    Fuzz::Input input(data, size);
    const std::string key = textOf(input.piece());
    const std::string value = textOf(input.piece());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << textOf(input.take(size));
    PI::CConfigFile file;
    file.SetFileName(path);
    const std::string before = valueOf(file, OTHER_KEY);
    if (file.WriteKeyValue(key, value, -1, -1) == 0)
        Fuzz::require(valueOf(file, key) == value);
    Fuzz::require(key == OTHER_KEY || valueOf(file, OTHER_KEY) == before);
    return 0;
}
