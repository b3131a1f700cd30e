#pragma once

#include <memory>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace TLXX::Linux {

/** An open folder, closed on destruction. Paths below it are relative to it. */
class CFolder
{
public:
    /**
     * `path` is relative to the folder `above`, by default to the current folder. Throws `std::runtime_error`
     * when descriptors or memory have run out.
     */
    explicit CFolder(const char* path, int above = AT_FDCWD);

    bool IsOpen() const { return m_Folder != nullptr; }
    int Get() const { return ::dirfd(m_Folder.get()); }

    /**
     * The next entry, valid until the next call; null after the last, and when the folder could not be
     * opened.
     */
    const dirent* Next();

    /** Whether an entry of this folder is a directory or links to one. */
    bool IsDirectory(const dirent& entry) const
    {
        if (entry.d_type == DT_DIR)
            return true;
        struct stat status = {};
        return ::fstatat(Get(), entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
    }

private:
    struct CClose
    {
        void operator()(DIR* folder) const { ::closedir(folder); }
    };

    std::unique_ptr<DIR, CClose> m_Folder;
};

/** The last name in the target of the link `path` below `folder`; empty if there is no such link. */
std::string linkTarget(const CFolder& folder, const char* path);

} // namespace TLXX::Linux
