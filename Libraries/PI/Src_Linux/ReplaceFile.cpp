#include "ReplaceFile.h"

#include <TLX/Linux/Descriptor.h>
#include <TLX/TrustedFile.h>

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace PI {
namespace {

constexpr mode_t NEW_FILE_MODE = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;

/** A temporary file beside its target; removed again unless it replaces the target. */
class CTemporaryFile
{
public:
    explicit CTemporaryFile(const std::filesystem::path& target)
    {
        struct stat former
        {};
        m_Replaces = lstat(target.c_str(), &former) == 0 && S_ISREG(former.st_mode);
        m_Mode = m_Replaces ? former.st_mode & ALLPERMS : NEW_FILE_MODE;
        // Another thread, or a process that was killed, may have a file of this name.
        constexpr int attempts = 1000;
        for (int i = 0; i < attempts && (i == 0 || errno == EEXIST) && !m_Descriptor.Valid(); ++i) {
            m_Name = target.string() + "." + std::to_string(getpid()) + "-" + std::to_string(i);
            m_Descriptor =
                TLX::Linux::CDescriptor(open(m_Name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, m_Mode));
        }
    }
    ~CTemporaryFile()
    {
        if (Valid() && !m_Kept)
            unlink(m_Name.c_str());
    }
    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;

    bool Valid() const { return m_Descriptor.Valid(); }

    bool Write(std::string_view content) const
    {
        while (!content.empty()) {
            const ssize_t written = write(m_Descriptor.Get(), content.data(), content.size());
            if (written < 0 && errno != EINTR)
                return false;
            if (written > 0)
                content.remove_prefix(static_cast<std::size_t>(written));
        }
        return fsync(m_Descriptor.Get()) == 0;
    }

    bool TakePlaceOf(const std::filesystem::path& target)
    {
        // A new file keeps its permissions, because the process's mask was applied when it was created.
        m_Kept = (!m_Replaces || fchmod(m_Descriptor.Get(), m_Mode) == 0) &&
                 rename(m_Name.c_str(), target.c_str()) == 0;
        return m_Kept;
    }

private:
    std::string m_Name;
    TLX::Linux::CDescriptor m_Descriptor;
    bool m_Replaces = false;
    mode_t m_Mode = NEW_FILE_MODE;
    bool m_Kept = false;
};

/**
 * Makes a renaming in this folder permanent. Where a folder cannot be flushed, the new content is in place
 * all the same.
 */
void flushFolder(const std::filesystem::path& folder)
{
    const TLX::Linux::CDescriptor descriptor(
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.Valid())
        (void)fsync(descriptor.Get());
}

} // namespace

bool replaceFile(const std::filesystem::path& path, std::string_view content)
{
    // Replaces the file that a link points to, not the link.
    const auto target = TLX::Misc::trustedTarget(path);
    if (!target)
        return false;

    CTemporaryFile file(*target);
    if (!file.Valid() || !file.Write(content) || !file.TakePlaceOf(*target))
        return false;
    flushFolder(target->parent_path());
    return true;
}

} // namespace PI
