#pragma once

#include <PI/Export.h>

#include <boost/filesystem/path.hpp>

#include <cstdint>
#include <string>

namespace PI {

/**
 * A settings file of "key=value" lines in the host's configuration folder. Lines that begin with ';' or '#'
 * are comments; a line "[...]" is a section heading, which this reader skips. Blanks around the key are
 * dropped. Blanks after the '=' belong to the value, but a carriage return at the end does not. The first
 * line of a key counts. A link in place of the file is followed only when it belongs to the superuser or to
 * this process's user; otherwise the file can be neither read nor written.
 */
class PI_EXPORT CConfigFile
{
public:
    /** Sets the folder of relative file names. The host calls it before it loads plug-ins. */
    static void SetFolder(const boost::filesystem::path& folder);

    /** Sets the file. Reads nothing yet. */
    void SetFileName(const boost::filesystem::path& fileName);

    /**
     * Reads the value of `key`. The two numbers select an instance of a section; -1 means the file as a
     * whole, the only one there is. Returns 0, or `ERR_GENERAL_FAILURE` with `value` untouched when file or
     * key is missing.
     */
    std::uint32_t ReadKeyValue(const std::string& key, std::string& value, std::int32_t section,
                               std::int32_t instance) const;

    /**
     * Writes `value` to the first line of `key`, or to a new line at the end; every other line stays as it
     * is. Creates a missing file. Replaces the file as a whole, so no reader ever sees half of it. Returns 0.
     * Returns `ERR_GENERAL_FAILURE` with the file untouched when the file cannot be read or written, or when
     * `ReadKeyValue` would not return the same value. With several writers at once the last one wins.
     */
    std::uint32_t WriteKeyValue(const std::string& key, const std::string& value, std::int32_t section,
                                std::int32_t instance) const;

private:
    boost::filesystem::path m_FileName;
};

} // namespace PI
