#include "EscapeControls.h"
#include "ModuleRegistry.h"

#include <TLX/TraceSink.h>
#include <TLX/UtcText.h>

#include <cstdio>
#include <exception>

namespace TLX::Trace {
namespace {

class CStandardErrorSink final : public ISink
{
public:
    void Write(const CLine& line) noexcept override
    {
        try {
            const std::string text = formatLine(line) + '\n';
            std::fwrite(text.data(), 1, text.size(), stderr);
        } catch (const std::exception&) {
            // When memory is short the line is lost; the traced code goes on.
        }
    }
};

} // namespace

ISink::~ISink() = default;

std::string formatLine(const CLine& line)
{
    std::string text = Misc::utcText(line.m_Time) + ' ';
    text.append(line.m_ModuleName).append(" ").append(std::to_string(line.m_Level));
    text.append(" ").append(line.m_SourceUnit).append(" ").append(line.m_Function);
    text.append(":").append(std::to_string(line.m_SourceLine)).append(" ").append(line.m_Text);
    return Internals::escapeControls(text);
}

std::shared_ptr<ISink> standardErrorSink()
{
    return std::make_shared<CStandardErrorSink>();
}

void setMask(std::uint32_t moduleNumber, std::uint32_t mask)
{
    Misc::CModuleRegistry::Instance().SetMask(moduleNumber, mask);
}

void setDefaultMask(std::uint32_t mask)
{
    Misc::CModuleRegistry::Instance().SetDefaultMask(mask);
}

} // namespace TLX::Trace
