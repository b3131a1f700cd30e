#pragma once

/** The address of `name` in the library `file`, which is never unloaded. Throws `std::runtime_error`. */
void* loadSymbol(const char* file, const char* name);
