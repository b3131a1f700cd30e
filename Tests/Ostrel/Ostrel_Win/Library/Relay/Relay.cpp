#include "Relay.h"

#include <system_error>

void CRelaySink::Write(const TLX::Trace::CLine& /*line*/) noexcept {}

std::unique_ptr<TLX::Trace::ISink> makeRelaySink()
{
    return std::make_unique<CRelaySink>();
}

void relay(const std::function<void()>& function)
{
    try {
        function();
    } catch (...) {
        throw;
    }
}

std::string describe(const std::exception_ptr& exception)
{
    try {
        std::rethrow_exception(exception);
    } catch (const std::system_error& error) {
        return "system error: " + error.code().message();
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "something else";
    }
}
