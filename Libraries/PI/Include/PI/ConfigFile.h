#pragma once

#include <PI/Export.h>

#include <boost/filesystem/path.hpp>

#include <cstdint>
#include <string>

namespace PI {

/**
 * A settings file of "key=value" lines in the host's configuration folder. Lines that begin with ';' or '#'
 * are comments, "[...]" a section heading that this reader passes over; blanks around the key are dropped,
 * those after the '=' belong to the value, but for a carriage return at the end. The first line of a key
 * counts. A link in the file's place is followed when it belongs to the superuser or to this process's user;
 * over any other link the file can be neither read nor written.
 */
class PI_EXPORT CConfigFile
{
public:
    /** Sets the folder against which relative file names are taken. The host calls it before it loads
     * plug-ins. */
    static void SetFolder(const boost::filesystem::path& folder);

    /** Sets the file; nothing is read yet. */
    void SetFileName(const boost::filesystem::path& fileName);

    /**
     * Reads the value of `key`. The two numbers select a section instance; -1 stands for the file as a whole,
     * the only one there is. Returns 0, or `ERR_GENERAL_FAILURE` with `value` untouched when file or key is
     * missing.
     */
    std::uint32_t ReadKeyValue(const std::string& key, std::string& value, std::int32_t section,
                               std::int32_t instance) const;

    /**
     * Writes `value` to the first line of `key`, or to a new line at the end; every other line stays as it
     * is. A missing file is made. The file is replaced as a whole, so that nobody ever reads half of it.
     * Returns 0, or `ERR_GENERAL_FAILURE` with the file untouched: it cannot be read or written, or
     * `ReadKeyValue` would not give the same value back. Of several writers at once the last one wins.
     */
    std::uint32_t WriteKeyValue(const std::string& key, const std::string& value, std::int32_t section,
                                std::int32_t instance) const;

private:
    boost::filesystem::path m_FileName;
};

} // namespace PI
