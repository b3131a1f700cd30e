#pragma once

#include <string_view>

namespace PI {

/** `text` without the blanks, tabs and carriage returns at its ends. */
std::string_view trim(std::string_view text);

} // namespace PI
