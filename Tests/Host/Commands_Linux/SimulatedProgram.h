#pragma once

#include "Host/Commands_Linux/RunProgram.h"

#include <string>
#include <vector>

namespace HostTest {

/** The option that shows the drives of a fleet file, followed by `words`. */
std::vector<std::string> simulated(std::vector<std::string> words, const std::string& fleet);

/** The same with the demonstration fleet. */
std::vector<std::string> simulated(std::vector<std::string> words);

std::vector<std::string> linesOf(const std::string& text);

} // namespace HostTest
