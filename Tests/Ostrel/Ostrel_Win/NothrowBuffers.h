#pragma once

#include <cstddef>

/** The arrays that this program has allocated without exceptions and not yet given back. */
std::size_t openBuffers();
