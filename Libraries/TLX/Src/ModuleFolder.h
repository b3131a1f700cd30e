#pragma once

#include <filesystem>

namespace TLX::Internals {

/** The folder of the program or library whose static data `address` is in; empty when it is in none. */
std::filesystem::path moduleFolder(const void* address);

} // namespace TLX::Internals
