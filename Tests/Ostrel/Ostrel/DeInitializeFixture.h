#pragma once

#include "Support/TraceCapture.h"
#include "WorkerFixture.h"

#include <string>
#include <vector>

namespace TestSupport {

inline const std::string WAITING = "Wait for termination... (Worker)";

class DeInitialize : public CWorkerFixture
{
protected:
    std::uint32_t Request()
    {
        PI::CRequestData nothing;
        return m_Api.Request(PI::REQUEST_DEINITIALIZE, 0, nothing);
    }

    static std::vector<std::string> OwnLines(const CTraceCapture& capture)
    {
        std::vector<std::string> texts;
        for (const auto& line : capture.Lines())
            if (line.m_Function == "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::DeInitialize")
                texts.push_back(std::to_string(line.m_Level) + ' ' + line.m_Text);
        return texts;
    }
};

} // namespace TestSupport
