#include "ChildProcess.h"

#include <csignal>
#include <stdexcept>

#include <sys/wait.h>
#include <unistd.h>

namespace TestSupport {

namespace {

constexpr uid_t NOBODY = 65534;

} // namespace

CPipe::CPipe()
{
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    m_Reader = TLX::Linux::CDescriptor(ends[0]);
    m_Writer = TLX::Linux::CDescriptor(ends[1]);
}

void CPipe::Write(const std::string& text) const
{
    if (write(m_Writer.Get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the pipe does not take the text");
}

bool CPipe::ReadByte(char& byte) const
{
    return read(m_Reader.Get(), &byte, 1) == 1;
}

std::string CPipe::ReadAll() const
{
    std::string text;
    char byte = 0;
    while (ReadByte(byte))
        text += byte;
    return text;
}

void CPipe::CloseReader()
{
    m_Reader = {};
}

void CPipe::CloseWriter()
{
    m_Writer = {};
}

CChildProcess::CChildProcess(const std::function<void(const CPipe& output, const CPipe& input)>& work)
    : m_Process(fork())
{
    if (m_Process < 0)
        throw std::runtime_error("no process");
    if (m_Process == 0) {
        m_Output.CloseReader();
        m_Input.CloseWriter();
        try {
            work(m_Output, m_Input);
        } catch (const std::exception&) {
            _exit(1);
        }
        _exit(0);
    }
    m_Output.CloseWriter();
    m_Input.CloseReader();
}

CChildProcess::~CChildProcess()
{
    Kill();
}

void CChildProcess::Kill()
{
    if (m_Process <= 0)
        return;
    kill(m_Process, SIGKILL);
    waitpid(m_Process, nullptr, 0);
    m_Process = -1;
}

std::string runUnprivileged(const std::function<std::string()>& work)
{
    const CChildProcess child([&work](const CPipe& output, const CPipe&) {
        if (geteuid() == 0 && (setgid(NOBODY) != 0 || setuid(NOBODY) != 0))
            throw std::runtime_error("cannot become an ordinary user");
        output.Write(work());
    });
    return child.Output().ReadAll();
}

} // namespace TestSupport
