#pragma once

#include <TLX/Linux/Descriptor.h>

#include <functional>
#include <string>

#include <sys/types.h>

namespace TestSupport {

/** A pipe. Both ends close on destruction. */
class CPipe
{
public:
    CPipe();

    void Write(const std::string& text) const;
    /** One byte; false at the end of what was written. */
    bool ReadByte(char& byte) const;
    std::string ReadAll() const;
    void CloseReader();
    void CloseWriter();

private:
    TLX::Linux::CDescriptor m_Reader;
    TLX::Linux::CDescriptor m_Writer;
};

/**
 * A process forked from this one. It writes to `Output`. It ends when `work` returns or when it is killed.
 */
class CChildProcess
{
public:
    /** `work` gets the pipes of `Output` and `Input`. Expectations of the test have no effect inside it. */
    explicit CChildProcess(const std::function<void(const CPipe& output, const CPipe& input)>& work);
    /** Kills the process and waits for its end. */
    ~CChildProcess();
    CChildProcess(const CChildProcess&) = delete;
    CChildProcess& operator=(const CChildProcess&) = delete;

    const CPipe& Output() const { return m_Output; }
    const CPipe& Input() const { return m_Input; }
    void Kill();

private:
    CPipe m_Output;
    CPipe m_Input;
    pid_t m_Process;
};

/** Runs `work` in another process as an ordinary user, and returns the text that it returned. */
std::string runUnprivileged(const std::function<std::string()>& work);

} // namespace TestSupport
