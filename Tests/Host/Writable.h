#pragma once

#include <memory>

namespace Host::Cli {

/** What takes the place of `shared` and can be written to: a copy, or a new object when there was none. */
template<typename Object>
Object& writable(std::shared_ptr<const Object>& shared)
{
    const auto copy = shared ? std::make_shared<Object>(*shared) : std::make_shared<Object>();
    shared = copy;
    return *copy;
}

} // namespace Host::Cli
