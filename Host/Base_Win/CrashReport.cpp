#include "Base/Platform.h"

#include <atomic>
#include <csignal>
#include <utility>

#include <windows.h>

namespace Host::Platform {
namespace {

std::atomic<const CrashReport*> current = nullptr;

void end()
{
    const CrashReport* const report = current;
    TerminateProcess(GetCurrentProcess(), report != nullptr ? static_cast<UINT>(report->print()) : 1);
}

LONG WINAPI onException(EXCEPTION_POINTERS* /*exception*/)
{
    end();
    return EXCEPTION_EXECUTE_HANDLER;
}

void onAbort(int /*signal*/)
{
    end();
}

} // namespace

struct CrashReport::Native
{
    Native()
        : m_FormerFilter(SetUnhandledExceptionFilter(onException)),
          m_FormerAbort(std::signal(SIGABRT, onAbort))
    {}

    ~Native()
    {
        (void)std::signal(SIGABRT, m_FormerAbort);
        SetUnhandledExceptionFilter(m_FormerFilter);
    }

    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    const LPTOP_LEVEL_EXCEPTION_FILTER m_FormerFilter;
    void (*const m_FormerAbort)(int);
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
