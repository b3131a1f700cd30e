#pragma once

#include <map>
#include <string>
#include <vector>

#include <windows.h>

// The device tree of the replacement for the system, which the test describes in a file. Each line is a
// device: as many blanks as it is deep, its instance identifier, and its properties, all separated by tabs. A
// property is `number=text`, with the number of the system's registry property, or `interface=path`.
namespace DeviceTree {

/** One device. */
struct Node
{
    std::string m_Instance;
    unsigned m_Depth = 0;
    std::map<ULONG, std::string> m_Properties;
    std::vector<std::string> m_Interfaces;

    /** The handle of the device for callers. It stays the same when the test changes the tree. */
    DWORD handle() const;
};

using Nodes = std::vector<Node>;

/** The tree in the file, in the order of its lines; empty when there is no file. */
Nodes read();

/** The index of the device with that handle, or with that instance identifier; the size when there is none.
 */
std::size_t find(const Nodes& nodes, DWORD handle);
std::size_t find(const Nodes& nodes, const std::string& instance);

/** The index of the device's first child, next sibling or parent; the size when there is none. */
std::size_t child(const Nodes& nodes, std::size_t index);
std::size_t sibling(const Nodes& nodes, std::size_t index);
std::size_t parent(const Nodes& nodes, std::size_t index);

} // namespace DeviceTree
