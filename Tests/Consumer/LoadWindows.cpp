#include "Load.h"

#include <stdexcept>
#include <string>

#include <windows.h>

void* loadSymbol(const char* file, const char* name)
{
    const HMODULE library = LoadLibraryA(file);
    const FARPROC symbol = library != nullptr ? GetProcAddress(library, name) : nullptr;
    if (symbol == nullptr)
        throw std::runtime_error(std::string(file) + ": error " + std::to_string(GetLastError()));
    return reinterpret_cast<void*>(symbol);
}
