#include "../FailingSystem.h"

#include "Support_Win/ImportPatch.h"

#include <windows.h>

namespace {

int g_MutexesLeft = FailingSystem::ALL;
int g_EventsLeft = FailingSystem::ALL;

bool isTheFailingOne(int& left)
{
    return left >= 0 && left-- == 0;
}

HANDLE WINAPI createMutex(LPSECURITY_ATTRIBUTES attributes, BOOL owned, LPCWSTR name)
{
    return isTheFailingOne(g_MutexesLeft) ? nullptr : CreateMutexW(attributes, owned, name);
}

HANDLE WINAPI createEvent(LPSECURITY_ATTRIBUTES attributes, BOOL manual, BOOL signalled, LPCWSTR name)
{
    return isTheFailingOne(g_EventsLeft) ? nullptr : CreateEventW(attributes, manual, signalled, name);
}

} // namespace

void FailingSystem::let(int mutexes, int events)
{
    static const TestSupport::CImportPatch mutexPatch(L"TLX.dll", "CreateMutexW", createMutex);
    static const TestSupport::CImportPatch eventPatch(L"TLX.dll", "CreateEventW", createEvent);
    g_MutexesLeft = mutexes;
    g_EventsLeft = events;
}
