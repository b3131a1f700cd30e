#pragma once

#include "Terminal/Screen.h"

#include <cstddef>
#include <string>

namespace Host::Cli {

/**
 * `text` (printable UTF-8) and a line end, on a terminal in lines that fit, as far as single words allow. The
 * first one stands behind what the caller has put there, `indent` columns; the others behind as many blanks.
 */
std::string paragraph(const std::string& text, std::size_t indent, const Screen& screen,
                      Tone tone = Tone::Plain);

} // namespace Host::Cli
