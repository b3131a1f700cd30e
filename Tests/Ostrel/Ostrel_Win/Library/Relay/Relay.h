#pragma once

#include <TLX/TraceSink.h>

#include <exception>
#include <functional>
#include <memory>
#include <string>

/** A sink of this library's own kind. */
class RELAY_EXPORT CRelaySink : public TLX::Trace::ISink
{
public:
    void Write(const TLX::Trace::CLine& line) noexcept override;
};

/** Makes a `CRelaySink`. */
RELAY_EXPORT std::unique_ptr<TLX::Trace::ISink> makeRelaySink();

/** Calls `function`, catches whatever it throws and throws it again. */
RELAY_EXPORT void relay(const std::function<void()>& function);

/** What the exception says, looked at in this library. */
RELAY_EXPORT std::string describe(const std::exception_ptr& exception);
