#include "Support/SilentPipe.h"

#include <stdexcept>

#include <windows.h>

namespace TestSupport {
namespace {

HANDLE handle(std::intptr_t end)
{
    return reinterpret_cast<HANDLE>(end);
}

} // namespace

CSilentPipe::CSilentPipe()
{
    HANDLE reader = nullptr;
    HANDLE writer = nullptr;
    if (CreatePipe(&reader, &writer, nullptr, 0) == FALSE)
        throw std::runtime_error("no pipe");
    m_Reader = reinterpret_cast<std::intptr_t>(reader);
    m_Writer = reinterpret_cast<std::intptr_t>(writer);
}

CSilentPipe::~CSilentPipe()
{
    CloseHandle(handle(m_Reader));
    CloseHandle(handle(m_Writer));
}

bool CSilentPipe::ReadByte() const
{
    char byte = 0;
    DWORD count = 0;
    return ReadFile(handle(m_Reader), &byte, 1, &count, nullptr) != FALSE && count == 1;
}

void CSilentPipe::WriteByte() const
{
    DWORD count = 0;
    if (WriteFile(handle(m_Writer), "x", 1, &count, nullptr) == FALSE || count != 1)
        throw std::runtime_error("the pipe takes nothing");
}

} // namespace TestSupport
