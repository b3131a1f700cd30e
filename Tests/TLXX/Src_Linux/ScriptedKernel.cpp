#include "ScriptedKernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <string_view>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <linux/nvme_ioctl.h>
#include <pthread.h>
#include <sys/ioctl.h>

namespace TLXXTest {
namespace {

constexpr std::uint32_t PATIENCE_MS = 10'000;

std::atomic<CScriptedKernel*> g_Kernel = nullptr;

int realOpen(const char* path, int flags, mode_t mode)
{
    using Open = int (*)(const char*, int, ...);
    static const auto function = reinterpret_cast<Open>(::dlsym(RTLD_NEXT, "open"));
    return function(path, flags, mode);
}

int realControl(int descriptor, unsigned long request, void* argument)
{
    using Control = int (*)(int, unsigned long, ...);
    static const auto function = reinterpret_cast<Control>(::dlsym(RTLD_NEXT, "ioctl"));
    return function(descriptor, request, argument);
}

int fail(int error)
{
    errno = error;
    return -1;
}

} // namespace

CScriptedKernel::CScriptedKernel()
{
    g_Kernel = this;
}

CScriptedKernel::~CScriptedKernel()
{
    g_Kernel = nullptr;
    EXPECT_TRUE(m_Script.empty()) << m_Script.size() << " expected commands never came";
    for (const auto& [descriptor, node] : m_Opened)
        EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1) << node << " was left open";
}

void CScriptedKernel::Provide(const std::string& node)
{
    const std::scoped_lock guard(m_Lock);
    m_Nodes[node] = 0;
}

void CScriptedKernel::Refuse(const std::string& node, int error)
{
    const std::scoped_lock guard(m_Lock);
    m_Nodes[node] = error;
}

void CScriptedKernel::Expect(const CExpectedCommand& command, CReply reply)
{
    Provide(command.m_Node);
    const std::scoped_lock guard(m_Lock);
    m_Script.push_back({command, std::move(reply)});
}

int CScriptedKernel::Open(const std::string& node, int flags)
{
    const std::scoped_lock guard(m_Lock);
    EXPECT_EQ(flags, O_RDONLY | O_CLOEXEC) << node;
    const auto found = m_Nodes.find(node);
    if (found == m_Nodes.end())
        return fail(ENOENT);
    if (found->second != 0)
        return fail(found->second);
    const int descriptor = realOpen("/dev/null", O_RDONLY | O_CLOEXEC, 0);
    m_Opened[descriptor] = node;
    ++m_Openings;
    return descriptor;
}

bool CScriptedKernel::Owns(int descriptor)
{
    const std::scoped_lock guard(m_Lock);
    return m_Opened.contains(descriptor);
}

int CScriptedKernel::Openings()
{
    const std::scoped_lock guard(m_Lock);
    return m_Openings;
}

int CScriptedKernel::StillOpen()
{
    const std::scoped_lock guard(m_Lock);
    return static_cast<int>(std::count_if(m_Opened.begin(), m_Opened.end(), [](const auto& opened) {
        return ::fcntl(opened.first, F_GETFD) != -1;
    }));
}

int CScriptedKernel::Control(int descriptor, unsigned long request, void* argument)
{
    int state = 0;
    int type = 0;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
    pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, &type);
    pthread_setcanceltype(type, nullptr);
    pthread_setcancelstate(state, nullptr);
    m_Interruptible = state == PTHREAD_CANCEL_ENABLE && type == PTHREAD_CANCEL_ASYNCHRONOUS;

    const std::scoped_lock guard(m_Lock);
    if (m_Script.empty()) {
        ADD_FAILURE() << "a command that nobody expected";
        return fail(EIO);
    }
    const CStep step = std::move(m_Script.front());
    m_Script.pop_front();
    EXPECT_EQ(request, NVME_IOCTL_ADMIN_CMD);
    EXPECT_EQ(m_Opened[descriptor], step.m_Command.m_Node);

    nvme_admin_cmd command{};
    std::memcpy(&command, argument, sizeof command);
    EXPECT_EQ(command.opcode, step.m_Command.m_Opcode);
    EXPECT_EQ(command.nsid, step.m_Command.m_NamespaceId);
    EXPECT_EQ(command.cdw10, step.m_Command.m_Word10);
    EXPECT_EQ(command.data_len, step.m_Command.m_Length);
    EXPECT_EQ(command.timeout_ms, PATIENCE_MS);

    nvme_admin_cmd whole{};
    whole.opcode = step.m_Command.m_Opcode;
    whole.nsid = step.m_Command.m_NamespaceId;
    whole.cdw10 = step.m_Command.m_Word10;
    whole.data_len = step.m_Command.m_Length;
    whole.cdw12 = step.m_Command.m_Word12;
    whole.timeout_ms = PATIENCE_MS;
    whole.addr = command.addr;
    EXPECT_EQ(std::memcmp(&command, &whole, sizeof command), 0) << "a word that must be zero is not";

    EXPECT_LE(step.m_Reply.m_Data.size(), command.data_len);
    if (!step.m_Reply.m_Data.empty())
        std::memcpy(std::bit_cast<void*>(command.addr), step.m_Reply.m_Data.data(),
                    step.m_Reply.m_Data.size());
    if (step.m_Reply.m_Meanwhile)
        step.m_Reply.m_Meanwhile();
    errno = step.m_Reply.m_Error;
    return step.m_Reply.m_Result;
}

} // namespace TLXXTest

extern "C" {

__attribute__((visibility("default"))) int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    TLXXTest::CScriptedKernel* const kernel = TLXXTest::g_Kernel;
    if (kernel != nullptr && std::string_view(path).starts_with("/dev/nvme"))
        return kernel->Open(path, flags);
    return TLXXTest::realOpen(path, flags, mode);
}

__attribute__((visibility("default"))) int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    TLXXTest::CScriptedKernel* const kernel = TLXXTest::g_Kernel;
    if (kernel != nullptr && kernel->Owns(descriptor))
        return kernel->Control(descriptor, request, argument);
    return TLXXTest::realControl(descriptor, request, argument);
}
}
