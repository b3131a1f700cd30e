#pragma once

#include <cstdint>

#include <windows.h>

namespace TestSupport {

/** The object at an offset of a loaded image. */
template<typename T>
T* at(std::uint8_t* base, std::uint64_t offset)
{
    return reinterpret_cast<T*>(base + offset);
}

/** One of the directories of a loaded image. */
inline const IMAGE_DATA_DIRECTORY& imageDirectory(std::uint8_t* base, unsigned index)
{
    const auto* const dosHeader = at<IMAGE_DOS_HEADER>(base, 0);
    const auto* const headers = at<IMAGE_NT_HEADERS>(base, static_cast<std::uint32_t>(dosHeader->e_lfanew));
    return headers->OptionalHeader.DataDirectory[index];
}

} // namespace TestSupport
