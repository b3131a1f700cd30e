#pragma once

#include "Terminal/Screen.h"

#include <cstddef>
#include <string>

namespace Host::Cli {

/**
 * `text` (printable UTF-8) and a line end. On a terminal it is broken into lines that fit, if single words
 * are not longer. The caller has already printed `indent` columns before the first line. The other lines get
 * as many blanks.
 */
std::string paragraph(const std::string& text, std::size_t indent, const Screen& screen,
                      Tone tone = Tone::Plain);

} // namespace Host::Cli
