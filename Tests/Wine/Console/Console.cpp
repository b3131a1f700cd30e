// usage: console PROGRAM [ARGUMENT...]
//
// Runs a program that shares this one's outputs, and tells it of each console event whose number comes on a
// line of standard input. That is done as the system does it: a thread of the program's own begins in the
// system's routine for such events. Ends with the program's exit code.

#include <cstdio>
#include <iostream>
#include <string>
#include <thread>

#include <windows.h>

namespace {

/** The command line without its first word, which is in quotation marks if it has blanks. */
wchar_t* withoutFirstWord(wchar_t* line)
{
    const wchar_t end = *line == L'"' ? L'"' : L' ';
    for (++line; *line != L'\0' && *line != end; ++line) {
    }
    while (*line == L'"' || *line == L' ')
        ++line;
    return line;
}

void tell(HANDLE process, std::size_t event)
{
    const auto routine = reinterpret_cast<LPTHREAD_START_ROUTINE>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine")));
    const HANDLE thread =
        CreateRemoteThread(process, nullptr, 0, routine, reinterpret_cast<void*>(event), 0, nullptr);
    if (routine == nullptr || thread == nullptr)
        ExitProcess(99);
    CloseHandle(thread);
}

} // namespace

int main()
{
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION program{};
    if (CreateProcessW(nullptr, withoutFirstWord(GetCommandLineW()), nullptr, nullptr, TRUE, 0, nullptr,
                       nullptr, &startup, &program) == FALSE) {
        std::fprintf(stderr, "console: error %lu\n", GetLastError());
        return 99;
    }
    std::thread([process = program.hProcess] {
        for (std::size_t event = 0; std::cin >> event;)
            tell(process, event);
    }).detach();
    DWORD code = 99;
    WaitForSingleObject(program.hProcess, INFINITE);
    GetExitCodeProcess(program.hProcess, &code);
    ExitProcess(code);
}
