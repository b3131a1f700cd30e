#pragma once

#include <filesystem>

namespace TLX::Internals {

/** The folder of the program or library whose static data include `address`; empty when there is none. */
std::filesystem::path moduleFolder(const void* address);

} // namespace TLX::Internals
