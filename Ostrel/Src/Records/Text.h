#pragma once

#include <string_view>

namespace NAMESPACE_Ostrel {

/** Whether two texts of one length are the same but for the case of letters, whatever the process's locale.
 */
bool equalIgnoringCase(std::string_view left, std::string_view right);

} // namespace NAMESPACE_Ostrel
