#pragma once

#include "Base/Output.h"

#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

namespace HostTest {

/** An output that keeps what is written, from any thread. */
class FakeOutput : public Host::Output
{
public:
    explicit FakeOutput(bool isTerminal) : m_IsTerminal(isTerminal) {}

    void write(std::string_view text) override
    {
        if (m_Fails)
            throw std::runtime_error("the output fails");
        const std::scoped_lock guard(m_Lock);
        m_Writes.emplace_back(text);
    }
    bool isTerminal() const override { return m_IsTerminal; }
    unsigned terminalWidth() const override { return m_Width; }
    bool showsColours() const override { return m_IsTerminal; }

    /** Each written text separately. */
    std::vector<std::string> writes()
    {
        const std::scoped_lock guard(m_Lock);
        return m_Writes;
    }

    std::string written()
    {
        std::string text;
        for (const std::string& each : writes())
            text += each;
        return text;
    }

    unsigned m_Width = 80;
    bool m_Fails = false;

private:
    const bool m_IsTerminal;
    std::mutex m_Lock;
    std::vector<std::string> m_Writes;
};

} // namespace HostTest
