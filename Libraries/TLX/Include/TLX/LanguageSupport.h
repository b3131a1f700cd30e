#pragma once

#include <TLX/Export.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace TLX::Language_Support {

/** The texts of the numbers that host and plug-ins exchange: captions, values, units, icons, events. */
class TLX_EXPORT CLanguageSupport
{
public:
    /**
     * One module's catalogue file. It is in the catalogue folder, or else in the folder of the library that
     * this object belongs to. It is read at the first question, and again when the folder was changed; a file
     * that is missing, unreadable or not UTF-8 counts as empty. Safe from any thread.
     *
     * Format: UTF-8. Each line has a decimal number, blanks and the text. Empty lines, lines that begin with
     * '#' and lines of another shape are skipped. The last entry of a number counts.
     */
    class TLX_EXPORT CLngFile
    {
    public:
        /**
         * `languageCode` is two letters in one word, the first in the high byte. `defaultErrors` are the
         * texts of errors that the catalogue lacks.
         */
        CLngFile(std::string fileName, std::uint32_t languageCode, std::string encoding,
                 std::uint32_t formatNumber, std::vector<std::string> defaultErrors);
        ~CLngFile();
        CLngFile(const CLngFile&) = delete;
        CLngFile& operator=(const CLngFile&) = delete;

        /** The text of `number`, if the catalogue has one. */
        std::optional<std::string> Text(std::uint32_t number) const;

        const std::string& FileName() const { return m_FileName; }
        std::uint32_t LanguageCode() const { return m_LanguageCode; }
        const std::string& Encoding() const { return m_Encoding; }
        std::uint32_t FormatNumber() const { return m_FormatNumber; }
        const std::vector<std::string>& DefaultErrors() const { return m_DefaultErrors; }

    private:
        std::filesystem::path Find(const std::filesystem::path& folder) const;

        std::string m_FileName;
        std::uint32_t m_LanguageCode;
        std::string m_Encoding;
        std::uint32_t m_FormatNumber;
        std::vector<std::string> m_DefaultErrors;

        mutable std::mutex m_Lock;
        mutable std::optional<std::filesystem::path> m_LoadedFrom;
        mutable std::map<std::uint32_t, std::string> m_Texts;
    };

    /** Sets the folder that holds the catalogue files. A host calls it before it asks for texts. */
    static void SetFolder(std::filesystem::path folder);

    /** The text of `number` from the first loaded module that has one. Safe from any thread. */
    static std::optional<std::string> Find(std::uint32_t number);
};

} // namespace TLX::Language_Support
