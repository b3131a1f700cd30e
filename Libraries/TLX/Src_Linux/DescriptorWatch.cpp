#include <TLX/Linux/DescriptorWatch.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>

namespace TLX::Linux {

CDescriptorWatch::CDescriptorWatch(int descriptor, std::function<bool()> read)
    : m_Stop(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)), m_Read(std::move(read))
{
    if (!m_Stop.Valid())
        throw std::system_error(errno, std::generic_category(), "eventfd");
    m_Thread.emplace([this, descriptor] { Run(descriptor); });
}

CDescriptorWatch::~CDescriptorWatch()
{
    (void)::eventfd_write(m_Stop.Get(), 1);
    (void)m_Thread->Wait();
}

void CDescriptorWatch::Run(int descriptor) const
{
    std::array<pollfd, 2> entries = {{{descriptor, POLLIN, 0}, {m_Stop.Get(), POLLIN, 0}}};
    for (;;) {
        if (::poll(entries.data(), entries.size(), -1) < 0) {
            if (errno != EINTR)
                return;
            continue;
        }
        if (entries[1].revents != 0)
            return;
        if (entries[0].revents != 0 && !m_Read())
            entries[0].fd = -1;
    }
}

} // namespace TLX::Linux
