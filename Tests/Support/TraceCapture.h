#pragma once

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace TestSupport {

/** A trace line as the sink saw it. */
struct CCapturedLine
{
    std::uint32_t m_Level;
    std::string m_SourceUnit;
    std::string m_Function;
    std::string m_Text;

    friend bool operator==(const CCapturedLine&, const CCapturedLine&) = default;
};

std::ostream& operator<<(std::ostream& stream, const CCapturedLine& line);

/** Collects the process's trace lines while it lives, with a module's mask set; the mask is 0 again
 * afterwards. */
class CTraceCapture
{
public:
    explicit CTraceCapture(std::uint32_t mask, std::uint32_t moduleNumber = 313);
    ~CTraceCapture();
    CTraceCapture(const CTraceCapture&) = delete;
    CTraceCapture& operator=(const CTraceCapture&) = delete;

    std::vector<CCapturedLine> Lines() const;

    /** The texts alone, in order. */
    std::vector<std::string> Texts() const;

private:
    class CSink;
    std::uint32_t m_ModuleNumber;
    std::shared_ptr<CSink> m_Sink;
};

} // namespace TestSupport
