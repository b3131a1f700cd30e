#include "Support/SilentPipe.h"

#include <stdexcept>

#include <unistd.h>

namespace TestSupport {

CSilentPipe::CSilentPipe()
{
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    m_Reader = ends[0];
    m_Writer = ends[1];
}

CSilentPipe::~CSilentPipe()
{
    ::close(static_cast<int>(m_Reader));
    ::close(static_cast<int>(m_Writer));
}

bool CSilentPipe::ReadByte() const
{
    char byte = 0;
    return ::read(static_cast<int>(m_Reader), &byte, 1) == 1;
}

void CSilentPipe::WriteByte() const
{
    if (::write(static_cast<int>(m_Writer), "x", 1) != 1)
        throw std::runtime_error("the pipe takes nothing");
}

} // namespace TestSupport
