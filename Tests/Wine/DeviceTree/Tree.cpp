#include "Tree.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>

namespace DeviceTree {
namespace {

constexpr char FILE_NAME[] = "C:\\StorageTest\\tree.txt";

std::string upper(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

Node parse(const std::string& line)
{
    Node node;
    node.m_Depth = static_cast<unsigned>(line.find_first_not_of(' '));
    std::istringstream fields(line.substr(node.m_Depth));
    std::getline(fields, node.m_Instance, '\t');
    for (std::string field; std::getline(fields, field, '\t');) {
        const std::size_t equals = field.find('=');
        const std::string name = field.substr(0, equals);
        const std::string value = field.substr(equals + 1);
        if (name == "interface")
            node.m_Interfaces.push_back(value);
        else
            node.m_Properties[std::stoul(name, nullptr, 0)] = value;
    }
    return node;
}

template<typename Predicate>
std::size_t findIf(const Nodes& nodes, Predicate predicate)
{
    return static_cast<std::size_t>(std::find_if(nodes.begin(), nodes.end(), predicate) - nodes.begin());
}

} // namespace

DWORD Node::handle() const
{
    // FNV-1a, and never 0, which callers may take for no device.
    DWORD hash = 2166136261U;
    for (const char c : upper(m_Instance))
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    return hash | 1U;
}

Nodes read()
{
    Nodes nodes;
    std::ifstream file(FILE_NAME);
    for (std::string line; std::getline(file, line);)
        if (line.find_first_not_of(" \r") != std::string::npos)
            nodes.push_back(parse(line.substr(0, line.find_last_not_of('\r') + 1)));
    return nodes;
}

std::size_t find(const Nodes& nodes, DWORD handle)
{
    return findIf(nodes, [&](const Node& node) { return node.handle() == handle; });
}

std::size_t find(const Nodes& nodes, const std::string& instance)
{
    return findIf(nodes, [&](const Node& node) { return upper(node.m_Instance) == upper(instance); });
}

std::size_t child(const Nodes& nodes, std::size_t index)
{
    const std::size_t next = index + 1;
    return next < nodes.size() && nodes[next].m_Depth > nodes[index].m_Depth ? next : nodes.size();
}

std::size_t sibling(const Nodes& nodes, std::size_t index)
{
    std::size_t next = index + 1;
    while (next < nodes.size() && nodes[next].m_Depth > nodes[index].m_Depth)
        ++next;
    return next < nodes.size() && nodes[next].m_Depth == nodes[index].m_Depth ? next : nodes.size();
}

std::size_t parent(const Nodes& nodes, std::size_t index)
{
    for (std::size_t above = index; above-- > 0;)
        if (nodes[above].m_Depth < nodes[index].m_Depth)
            return above;
    return nodes.size();
}

} // namespace DeviceTree
