#pragma once

#include <TLX/TraceSink.h>

#include <exception>
#include <functional>
#include <memory>
#include <string>

/** A sink of a class that this library defines. */
class RELAY_EXPORT CRelaySink : public TLX::Trace::ISink
{
public:
    void Write(const TLX::Trace::CLine& line) noexcept override;
};

/** Makes a `CRelaySink`. */
RELAY_EXPORT std::unique_ptr<TLX::Trace::ISink> makeRelaySink();

/** Calls `function`, catches its exception and throws it again. */
RELAY_EXPORT void relay(const std::function<void()>& function);

/** The text of the exception, read in this library. */
RELAY_EXPORT std::string describe(const std::exception_ptr& exception);
