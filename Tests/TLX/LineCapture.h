#pragma once

#include <TLX/ModuleInfo.h>
#include <TLX/TraceSink.h>
#include <TLX/TraceStreamBuffer.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

/** A module with a number. It exists as long as this object. */
struct CTestModule
{
    explicit CTestModule(std::uint32_t number, const std::string& name = "Module",
                         const std::string& languageFile = "Module.nls")
        : m_LanguageFile(languageFile, 25966, "utf-8", 1, {}), m_Info(number, name, "1.0", m_LanguageFile, {})
    {}

    TLX::Language_Support::CLanguageSupport::CLngFile m_LanguageFile;
    TLX::Misc::CModuleInfo m_Info;
};

/** Keeps the formatted lines and notes whether two calls ever overlapped. */
class CLineSink : public TLX::Trace::ISink
{
public:
    void Write(const TLX::Trace::CLine& line) noexcept override
    {
        m_Overlapped = m_Overlapped || m_Busy.exchange(true);
        m_Texts.emplace_back(line.m_Text);
        m_Last = TLX::Trace::formatLine(line);
        m_Busy = false;
    }

    std::vector<std::string> m_Texts;
    std::string m_Last;
    std::atomic<bool> m_Overlapped = false;

private:
    std::atomic<bool> m_Busy = false;
};

/** A sink that receives all lines of the process while it lives. */
class CLineCapture
{
public:
    CLineCapture() { TLX::Trace::setSink(m_Sink); }
    ~CLineCapture() { TLX::Trace::setSink(nullptr); }
    CLineCapture(const CLineCapture&) = delete;
    CLineCapture& operator=(const CLineCapture&) = delete;

    const CLineSink* operator->() const { return m_Sink.get(); }

private:
    std::shared_ptr<CLineSink> m_Sink = std::make_shared<CLineSink>();
};

/** Traces as a module does: tests the level's bit before it makes the line and its arguments. */
#define TEST_TRACE(module, level)                                                                            \
    if (((module).TraceMask() & (level)) == 0) {                                                             \
    } else                                                                                                   \
        TLX::Internals::CTraceStreamBuffer((level), (module), "Tests/TLX",                                   \
                                           TLX::Internals::qualifiedName(__PRETTY_FUNCTION__), __LINE__)
