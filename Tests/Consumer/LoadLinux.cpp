#include "Load.h"

#include <stdexcept>

#include <dlfcn.h>

void* loadSymbol(const char* file, const char* name)
{
    void* const library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    void* const symbol = library != nullptr ? dlsym(library, name) : nullptr;
    if (symbol == nullptr)
        throw std::runtime_error(dlerror());
    return symbol;
}
