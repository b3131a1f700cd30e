#include "Support_Win/ScriptedDevices.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include <windows.h>
#include <cfgmgr32.h>

namespace TestSupport {
namespace {

CScriptedDevices* g_Devices = nullptr;

} // namespace

CScriptedDevices* scriptedDevices()
{
    return g_Devices;
}

CScriptedDevices::CScriptedDevices(const wchar_t* module)
{
    m_Nodes[ROOT];
    g_Devices = this;
    Attach(module);
}

CScriptedDevices::~CScriptedDevices()
{
    EXPECT_TRUE(m_Handles.empty());
    EXPECT_TRUE(m_Sets.empty());
    m_Patches.clear();
    g_Devices = nullptr;
}

CScriptedDevices::Node CScriptedDevices::Add(Node parent, const std::string& service)
{
    const Node node = ++m_LastNode;
    m_Nodes[node].m_Parent = parent;
    m_Nodes.at(parent).m_Children.push_back(node);
    if (!service.empty())
        SetText(node, CM_DRP_SERVICE, service);
    return node;
}

CScriptedDevices::Node CScriptedDevices::AddController(Node parent, std::vector<CScriptedDisk> disks,
                                                       const std::string& service)
{
    const Node controller = Add(parent, service);
    SetDisks(Add(controller, "disk"), std::move(disks));
    return controller;
}

void CScriptedDevices::Remove(Node node)
{
    while (!m_Nodes.at(node).m_Children.empty())
        Remove(m_Nodes.at(node).m_Children.back());
    std::erase(m_Nodes.at(m_Nodes.at(node).m_Parent).m_Children, node);
    m_Nodes.erase(node);
}

void CScriptedDevices::SetProperty(Node node, std::uint32_t property, std::vector<char> bytes)
{
    m_Nodes.at(node).m_Properties[property] = std::move(bytes);
}

void CScriptedDevices::SetText(Node node, std::uint32_t property, const std::string& text)
{
    SetProperty(node, property, {text.c_str(), text.c_str() + text.size() + 1});
}

void CScriptedDevices::SetNumber(Node node, std::uint32_t property, std::uint32_t number)
{
    std::vector<char> bytes(sizeof number);
    std::memcpy(bytes.data(), &number, sizeof number);
    SetProperty(node, property, std::move(bytes));
}

void CScriptedDevices::SetDisks(Node node, std::vector<CScriptedDisk> disks)
{
    m_Nodes.at(node).m_Disks = std::move(disks);
}

std::string CScriptedDevices::Instance(Node node)
{
    return "TEST\\NODE\\" + std::to_string(node);
}

bool CScriptedDevices::Fails(const std::string& call)
{
    m_Calls.push_back(call);
    if (m_Before)
        m_Before(call);
    return m_CallCount++ == m_FailAt;
}

CScriptedDevices::CNode* CScriptedDevices::Find(Node node)
{
    const auto found = m_Nodes.find(node);
    return found == m_Nodes.end() ? nullptr : &found->second;
}

CScriptedDevices::Node CScriptedDevices::Neighbour(Node node) const
{
    const auto found = m_Nodes.find(node);
    if (found == m_Nodes.end() || found->second.m_Parent == 0)
        return 0;
    const std::vector<Node>& children = m_Nodes.at(found->second.m_Parent).m_Children;
    // The children are in ascending order, because nodes are numbered as they are added.
    const auto next = std::upper_bound(children.begin(), children.end(), node);
    return next == children.end() ? 0 : *next;
}

const CScriptedDisk* CScriptedDevices::FindDisk(const std::string& path) const
{
    for (const auto& [unused, node] : m_Nodes) {
        for (const CScriptedDisk& disk : node.m_Disks) {
            if (disk.m_Path == path ||
                (disk.m_Number && R"(\\.\PhysicalDrive)" + std::to_string(*disk.m_Number) == path))
                return &disk;
        }
    }
    return nullptr;
}

} // namespace TestSupport
