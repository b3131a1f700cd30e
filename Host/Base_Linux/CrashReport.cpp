#include "Base/Platform.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <utility>

#include <unistd.h>

namespace Host::Platform {
namespace {

constexpr std::array CRASHES = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

std::atomic<const CrashReport*> current = nullptr;

void onCrash(int /*signal*/)
{
    const CrashReport* const report = current;
    _exit(report != nullptr ? report->print() : EXIT_FAILURE);
}

} // namespace

/** The handlers, and a stack of their own, because the usual one may be what has overflowed. */
struct CrashReport::Native
{
    Native()
    {
        stack_t stack{};
        stack.ss_sp = m_Stack.data();
        stack.ss_size = m_Stack.size();
        (void)sigaltstack(&stack, &m_FormerStack);
        struct sigaction action
        {};
        action.sa_handler = onCrash;
        // A crash within the handler ends the process the usual way.
        action.sa_flags = SA_ONSTACK | SA_RESETHAND;
        for (std::size_t i = 0; i < CRASHES.size(); ++i)
            (void)sigaction(CRASHES.at(i), &action, &m_Former.at(i));
    }

    ~Native()
    {
        for (std::size_t i = 0; i < CRASHES.size(); ++i)
            (void)sigaction(CRASHES.at(i), &m_Former.at(i), nullptr);
        (void)sigaltstack(&m_FormerStack, nullptr);
    }

    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    std::array<std::byte, 1U << 16U> m_Stack{};
    stack_t m_FormerStack{};
    std::array<struct sigaction, CRASHES.size()> m_Former{};
};

CrashReport::CrashReport(Output& output, std::string text, int exitCode)
    : m_Output(output), m_Text(std::move(text)), m_ExitCode(exitCode), m_Native(std::make_unique<Native>())
{
    current = this;
}

CrashReport::~CrashReport()
{
    m_Native.reset();
    current = nullptr;
}

} // namespace Host::Platform
