#pragma once

#include <string_view>

namespace NAMESPACE_Ostrel {

/** Whether two texts of the same length are equal without regard to case, whatever the process's locale. */
bool equalIgnoringCase(std::string_view left, std::string_view right);

} // namespace NAMESPACE_Ostrel
