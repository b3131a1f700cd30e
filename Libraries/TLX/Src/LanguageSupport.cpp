#include "ModuleFolder.h"
#include "ModuleRegistry.h"

#include <TLX/Utf8.h>

#include <charconv>
#include <fstream>
#include <system_error>
#include <utility>

namespace TLX::Language_Support {
namespace {

using Texts = std::map<std::uint32_t, std::string>;

struct CFolder
{
    std::mutex m_Lock;
    std::filesystem::path m_Path;
};

CFolder& catalogueFolder()
{
    // Never destroyed: a plug-in's catalogue may be asked while the process ends.
    static CFolder& folder = *new CFolder;
    return folder;
}

std::filesystem::path currentFolder()
{
    const std::scoped_lock guard(catalogueFolder().m_Lock);
    return catalogueFolder().m_Path;
}

/** Stores the entry in `line`, if it has the shape of one. */
void readLine(std::string_view line, Texts& texts)
{
    static constexpr std::string_view BLANKS = " \t";
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    if (error != std::errc())
        return;
    const std::string_view rest = line.substr(static_cast<std::size_t>(end - line.data()));
    const std::size_t text = rest.find_first_not_of(BLANKS);
    if (text != 0 && text != std::string_view::npos)
        texts[number] = rest.substr(text);
}

/** The entries of a catalogue file; none when it is missing or damaged. */
Texts readFile(const std::filesystem::path& path)
{
    Texts texts;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (!Misc::isUtf8(line))
            return {};
        readLine(line, texts);
    }
    return file.bad() ? Texts() : texts;
}

} // namespace

CLanguageSupport::CLngFile::CLngFile(std::string fileName, std::uint32_t languageCode, std::string encoding,
                                     std::uint32_t formatNumber, std::vector<std::string> defaultErrors)
    : m_FileName(std::move(fileName)),
      m_LanguageCode(languageCode),
      m_Encoding(std::move(encoding)),
      m_FormatNumber(formatNumber),
      m_DefaultErrors(std::move(defaultErrors))
{}

CLanguageSupport::CLngFile::~CLngFile() = default;

std::optional<std::string> CLanguageSupport::CLngFile::Text(std::uint32_t number) const
{
    const std::filesystem::path folder = currentFolder();
    const std::scoped_lock guard(m_Lock);
    if (m_LoadedFrom != folder) {
        m_Texts = readFile(Find(folder));
        m_LoadedFrom = folder;
    }
    const auto entry = m_Texts.find(number);
    return entry != m_Texts.end() ? std::optional(entry->second) : std::nullopt;
}

/** The path of the file. The catalogue of another maker's plug-in is not in the host's folder. */
std::filesystem::path CLanguageSupport::CLngFile::Find(const std::filesystem::path& folder) const
{
    std::filesystem::path shared = folder.empty() ? folder : folder / m_FileName;
    std::error_code error;
    if (!shared.empty() && std::filesystem::exists(shared, error))
        return shared;
    const std::filesystem::path own = Internals::moduleFolder(this);
    return own.empty() ? own : own / m_FileName;
}

void CLanguageSupport::SetFolder(std::filesystem::path folder)
{
    const std::scoped_lock guard(catalogueFolder().m_Lock);
    catalogueFolder().m_Path = std::move(folder);
}

std::optional<std::string> CLanguageSupport::Find(std::uint32_t number)
{
    return Misc::CModuleRegistry::Instance().Text(number);
}

} // namespace TLX::Language_Support
