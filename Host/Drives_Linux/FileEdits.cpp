#include "Drives/FileEdits.h"

#include <TLX/Linux/DescriptorWatch.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <utility>

#include <sys/inotify.h>

namespace Host {
namespace {

/** Reads the kernel's messages about a folder, and calls `announce` for those about one file in it. */
class FolderAnnouncements : public TLXX::IAnnouncements
{
public:
    FolderAnnouncements(TLX::Linux::CDescriptor messages, std::string fileName,
                        std::function<void()> announce)
        : m_Messages(std::move(messages)),
          m_FileName(std::move(fileName)),
          m_Announce(std::move(announce)),
          m_Watch(m_Messages.Get(), [this] { return readAll(); })
    {}

private:
    bool readAll() const
    {
        // Large enough for several messages. A message with the longest name takes 272 bytes.
        alignas(inotify_event) std::array<char, 4096> buffer{};
        for (;;) {
            const ssize_t size = ::read(m_Messages.Get(), buffer.data(), buffer.size());
            if (size <= 0)
                return size < 0 && (errno == EAGAIN || errno == EINTR);
            if (concernsFile(buffer.data(), static_cast<std::size_t>(size)))
                m_Announce();
        }
    }

    bool concernsFile(const char* messages, std::size_t size) const
    {
        for (std::size_t at = 0; at < size;) {
            inotify_event head{};
            std::memcpy(&head, messages + at, sizeof head);
            const char* const name = messages + at + sizeof head;
            // After an overflow some messages are lost, and one of them may have been about the file.
            if ((head.mask & IN_Q_OVERFLOW) != 0 || (head.len > 0 && m_FileName == name))
                return true;
            at += sizeof head + head.len;
        }
        return false;
    }

    const TLX::Linux::CDescriptor m_Messages;
    const std::string m_FileName;
    const std::function<void()> m_Announce;
    const TLX::Linux::CDescriptorWatch m_Watch; // the last one, because its thread uses the others
};

} // namespace

std::unique_ptr<TLXX::IAnnouncements> announceEdits(const std::filesystem::path& file,
                                                    std::function<void()> announce)
{
    // The folder is watched because most editors replace the edited file by another one.
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    TLX::Linux::CDescriptor messages(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!messages.Valid() ||
        ::inotify_add_watch(messages.Get(), folder.c_str(), IN_CLOSE_WRITE | IN_MOVED_TO) < 0)
        return nullptr;
    return std::make_unique<FolderAnnouncements>(std::move(messages), file.filename().string(),
                                                 std::move(announce));
}

} // namespace Host
