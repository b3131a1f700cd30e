#pragma once

/** The address of `name` in the library `file`, which is loaded for good. Throws `std::runtime_error`. */
void* loadSymbol(const char* file, const char* name);
