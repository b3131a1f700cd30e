#pragma once

#include <cstddef>

/** How many arrays this program has allocated with the nothrow form and not yet released. */
std::size_t openBuffers();
