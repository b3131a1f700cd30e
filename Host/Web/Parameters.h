#pragma once

#include "Web/Exchange.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Host::Web {

/** A parameter of a request is wrong. The message says in a whole sentence what is expected. */
class WrongParameter : public std::runtime_error
{
public:
    WrongParameter(std::string name, const std::string& message)
        : std::runtime_error(message), m_Name(std::move(name))
    {}

    const std::string& name() const { return m_Name; }

private:
    std::string m_Name;
};

/** A range of whole numbers. */
struct Bounds
{
    std::uint64_t m_Least = 0;
    std::uint64_t m_Most = 0;
};

/** The number that a parameter has. Throws `WrongParameter` for anything else. */
std::uint64_t parameterNumber(const std::string& name, std::string_view text, Bounds bounds);

/** The number of a parameter in the query, if the parameter is there. */
std::optional<std::uint64_t> queryNumber(const Request& request, const std::string& name, Bounds bounds);

} // namespace Host::Web
