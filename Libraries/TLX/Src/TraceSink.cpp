#include "ModuleRegistry.h"
#include "Utf8.h"

#include <TLX/TraceSink.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <exception>

namespace TLX::Trace {
namespace {

std::string timeText(std::uint64_t time)
{
    using namespace std::chrono;
    const sys_time<milliseconds> instant{milliseconds(time)};
    const auto day = floor<days>(instant);
    const year_month_day date{day};
    const hh_mm_ss<milliseconds> clock{instant - day};
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()),
                  static_cast<int>(clock.subseconds().count()));
    return text.data();
}

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
    std::string text = timeText(line.m_Time) + ' ';
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
