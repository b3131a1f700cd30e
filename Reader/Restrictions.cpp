#include "Restrictions.h"

#include <TLXX/Linux/ControllerNode.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/capability.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Reader {
namespace {

#if defined(__x86_64__)
constexpr std::uint32_t ARCHITECTURE = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t ARCHITECTURE = AUDIT_ARCH_AARCH64;
#else
#error "the filter of system calls does not know this architecture"
#endif

/** Allowed whatever their arguments are. */
constexpr std::array ALLOWED = {
    __NR_ppoll,
    __NR_recvfrom,
    __NR_sendmsg,
    __NR_accept4,
    __NR_setsockopt,
    __NR_read,
    __NR_write,
    __NR_close,
    __NR_newfstatat,
    __NR_fstat,
    __NR_brk,
    __NR_munmap,
    __NR_mremap,
    __NR_madvise,
    __NR_futex,
    __NR_set_robust_list,
    __NR_rseq,
    __NR_rt_sigprocmask,
    __NR_rt_sigreturn,
    __NR_sigaltstack,
    __NR_restart_syscall,
    __NR_exit,
    __NR_exit_group,
    __NR_getpid,
    __NR_gettid,
    __NR_tgkill,
    __NR_clock_gettime,
    __NR_clock_nanosleep,
    __NR_sched_yield,
    __NR_sched_getaffinity,
    __NR_getrandom,
    __NR_lseek,
#if defined(__NR_poll)
    __NR_poll,
#endif
#if defined(OSTREL_SANITIZED)
    __NR_pipe,
    __NR_pipe2, // with which a sanitizer finds out whether memory can be read
#endif
};

/** Allowed when none of these bits is set in one argument. */
struct Forbidden
{
    int m_Call;
    unsigned m_Argument;
    std::uint32_t m_Bits;
};
constexpr std::uint32_t OPEN_FLAGS =
    O_CLOEXEC | O_NONBLOCK | O_DIRECTORY | O_NOFOLLOW | 0x8000 /* large file */;
constexpr std::array FORBIDDEN = {
    Forbidden{__NR_openat, 2, ~OPEN_FLAGS}, // reading only
    Forbidden{__NR_mmap, 2, PROT_EXEC},
    Forbidden{__NR_mprotect, 2, PROT_EXEC},
};

/** Allowed when the argument is exactly this, or has all of these bits. */
struct Required
{
    int m_Call;
    unsigned m_Argument;
    std::uint32_t m_Mask;
    std::uint32_t m_Value;
};
constexpr std::array REQUIRED = {
    Required{__NR_ioctl, 1, 0xFFFFFFFF, TLXX::Linux::CONTROLLER_IOCTL},
    Required{__NR_clone, 0, CLONE_THREAD, CLONE_THREAD}, // threads, no processes
};

constexpr std::uint32_t refusal(std::uint32_t error)
{
    return SECCOMP_RET_ERRNO | (error & SECCOMP_RET_DATA);
}

/** The filter as instructions. Whatever no rule allows fails with EPERM. */
class Filter
{
public:
    Filter()
    {
        load(offsetof(seccomp_data, arch));
        add({BPF_JMP | BPF_JEQ | BPF_K, 1, 0, ARCHITECTURE});
        result(SECCOMP_RET_KILL_PROCESS);
        // Numbers of another ABI of this architecture differ from all that follow.
        load(offsetof(seccomp_data, nr));
        for (const int call : ALLOWED)
            rule(call, {}, SECCOMP_RET_ALLOW);
        // Its arguments are out of sight of a filter. The C library then uses `clone`.
        rule(__NR_clone3, {}, refusal(ENOSYS));
        for (const Forbidden& each : FORBIDDEN)
            rule(each.m_Call,
                 {{BPF_LD | BPF_W | BPF_ABS, 0, 0, argument(each.m_Argument)},
                  {BPF_JMP | BPF_JSET | BPF_K, 1, 0, each.m_Bits}},
                 SECCOMP_RET_ALLOW);
        for (const Required& each : REQUIRED)
            rule(each.m_Call,
                 {{BPF_LD | BPF_W | BPF_ABS, 0, 0, argument(each.m_Argument)},
                  {BPF_ALU | BPF_AND | BPF_K, 0, 0, each.m_Mask},
                  {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, each.m_Value}},
                 SECCOMP_RET_ALLOW);
        result(refusal(EPERM));
    }

    void install()
    {
        const sock_fprog program = {static_cast<unsigned short>(m_Code.size()), m_Code.data()};
        if (::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
            throw std::system_error(errno, std::generic_category(), "filter of system calls");
    }

private:
    /** The lower half of an argument. The kernel uses no more of those that are looked at. */
    static std::uint32_t argument(unsigned number)
    {
        return static_cast<std::uint32_t>(offsetof(seccomp_data, args) + number * sizeof(std::uint64_t));
    }

    void add(const sock_filter& instruction) { m_Code.push_back(instruction); }
    void load(std::size_t offset)
    {
        add({BPF_LD | BPF_W | BPF_ABS, 0, 0, static_cast<std::uint32_t>(offset)});
    }
    void result(std::uint32_t action) { add({BPF_RET | BPF_K, 0, 0, action}); }

    /** `action` for a call that passes `tests`. A test that fails skips the one instruction after the last.
     */
    void rule(int call, std::initializer_list<sock_filter> tests, std::uint32_t action)
    {
        // A call that fails its tests is refused at once, because the number is no longer loaded.
        const auto length = static_cast<std::uint8_t>(tests.size() + (tests.size() > 0 ? 2 : 1));
        add({BPF_JMP | BPF_JEQ | BPF_K, 0, length, static_cast<std::uint32_t>(call)});
        for (const sock_filter& test : tests)
            add(test);
        result(action);
        if (tests.size() > 0)
            result(refusal(EPERM));
    }

    std::vector<sock_filter> m_Code;
};

void control(int option, unsigned long first, unsigned long second, const char* what)
{
    if (::prctl(option, first, second, 0, 0) != 0)
        throw std::system_error(errno, std::generic_category(), what);
}

void keepOneCapability()
{
    // Nothing can be taken from the bounding set without a capability that a hardened unit does not give.
    for (int each = 0; ::prctl(PR_CAPBSET_READ, each, 0, 0, 0) >= 0; ++each)
        if (each != CAP_SYS_ADMIN)
            (void)::prctl(PR_CAPBSET_DROP, each, 0, 0, 0);
    control(PR_CAP_AMBIENT, PR_CAP_AMBIENT_CLEAR_ALL, 0, "ambient capabilities");
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> sets{};
    if (::syscall(SYS_capget, &header, sets.data()) != 0)
        throw std::system_error(errno, std::generic_category(), "capabilities");
    for (std::size_t i = 0; i < sets.size(); ++i) {
        const std::uint32_t kept = i == CAP_TO_INDEX(CAP_SYS_ADMIN) ? CAP_TO_MASK(CAP_SYS_ADMIN) : 0;
        const std::uint32_t granted = sets.at(i).permitted & kept;
        sets.at(i) = {granted, granted, 0};
    }
    if (::syscall(SYS_capset, &header, sets.data()) != 0)
        throw std::system_error(errno, std::generic_category(), "capabilities");
}

} // namespace

void restrictProcess()
{
    control(PR_SET_NO_NEW_PRIVS, 1, 0, "no new privileges");
    keepOneCapability();
    Filter().install();
}

} // namespace Reader
