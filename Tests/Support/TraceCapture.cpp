#include "Support/TraceCapture.h"

#include <TLX/TraceSink.h>

#include <mutex>

namespace TestSupport {

std::ostream& operator<<(std::ostream& stream, const CCapturedLine& line)
{
    return stream << line.m_Level << ' ' << line.m_SourceUnit << ' ' << line.m_Function << ": "
                  << line.m_Text;
}

class CTraceCapture::CSink : public TLX::Trace::ISink
{
public:
    void Write(const TLX::Trace::CLine& line) noexcept override
    {
        const std::scoped_lock guard(m_Lock);
        m_Lines.push_back({line.m_Level, std::string(line.m_SourceUnit), std::string(line.m_Function),
                           std::string(line.m_Text)});
    }

    std::mutex m_Lock;
    std::vector<CCapturedLine> m_Lines;
};

CTraceCapture::CTraceCapture(std::uint32_t mask, std::uint32_t moduleNumber)
    : m_ModuleNumber(moduleNumber), m_Sink(std::make_shared<CSink>())
{
    TLX::Trace::setSink(m_Sink);
    TLX::Trace::setMask(m_ModuleNumber, mask);
}

CTraceCapture::~CTraceCapture()
{
    TLX::Trace::setMask(m_ModuleNumber, 0);
    TLX::Trace::setSink(nullptr);
}

std::vector<CCapturedLine> CTraceCapture::Lines() const
{
    const std::scoped_lock guard(m_Sink->m_Lock);
    return m_Sink->m_Lines;
}

std::vector<std::string> CTraceCapture::Texts() const
{
    std::vector<std::string> texts;
    for (const CCapturedLine& line : Lines())
        texts.push_back(line.m_Text);
    return texts;
}

} // namespace TestSupport
