#include "Exports.h"

std::uint32_t HostTest::create(IPLUGINAPI*& plugin)
{
    plugin = nullptr;
    return PI::ERR_OUT_OF_MEMORY;
}
