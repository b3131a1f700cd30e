#pragma once

#include "Support_Win/ImportPatch.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <windows.h>
#include <winioctl.h>

namespace TestSupport {

/** One interface of a scripted disk, and its device. */
struct CScriptedDisk
{
    std::string m_Path;
    std::optional<std::uint32_t> m_Number; ///< none: the device does not tell its number
    DWORD m_OpenError = 0;
    DWORD m_ProbeError = ERROR_INSUFFICIENT_BUFFER;
    bool m_Detailed = true; ///< whether the second query for the path succeeds
    /** The number of bytes that the detail is said to need. None: the real number. */
    std::optional<DWORD> m_DetailSize;
    /** What the device reports besides its number, and how many bytes it claims to have returned. */
    DWORD m_Type = FILE_DEVICE_DISK;
    DWORD m_Partition = 0;
    DWORD m_NumberBytes = 12;
};

/** One control call to a scripted device: its input, and the room for its output. */
struct CControlCall
{
    std::string m_Path;
    DWORD m_Code;
    std::vector<std::uint8_t> m_Input;
    std::uint8_t* m_Output;
    DWORD m_OutputSize;
    DWORD* m_Returned;
};

/**
 * Replaces the system's device tree and its disks while it lives. It answers one module's calls to the
 * configuration manager, to the device installation functions and to devices, as far as the module imports
 * them. Calls for unknown files go to the system. Fixed arguments are checked.
 */
class CScriptedDevices
{
public:
    using Node = std::uint32_t;
    static constexpr Node ROOT = 1;

    /** `module`: file name of a loaded library; null: the program. The tree has only a root at first. */
    explicit CScriptedDevices(const wchar_t* module = nullptr);
    ~CScriptedDevices();
    CScriptedDevices(const CScriptedDevices&) = delete;
    CScriptedDevices& operator=(const CScriptedDevices&) = delete;

    /** Also answers the calls of a further module. */
    void Attach(const wchar_t* module);

    /** Adds a node after the last child of `parent`. Without a service the text is empty. */
    Node Add(Node parent, const std::string& service = {});
    /** Adds a controller with one child, whose disks are `disks`. Returns the controller. */
    Node AddController(Node parent, std::vector<CScriptedDisk> disks,
                       const std::string& service = "stornvme");
    /** Removes a node and all below it from the tree. */
    void Remove(Node node);
    void SetProperty(Node node, std::uint32_t property, std::vector<char> bytes);
    void SetText(Node node, std::uint32_t property, const std::string& text);
    void SetNumber(Node node, std::uint32_t property, std::uint32_t number);
    void SetDisks(Node node, std::vector<CScriptedDisk> disks);

    /** Instance identifier of a node. */
    static std::string Instance(Node node);

    /** Answers control calls other than for the device number. Returns the error, or 0. */
    std::function<DWORD(const CControlCall&)> m_Control;

    /** Gets the key of every call that can fail, before the call does anything. */
    std::function<void(const std::string& call)> m_Before;

    bool m_HasRoot = true;
    /** Makes the call with this number fail, counted from 0; negative: none. Releases are not counted. */
    long m_FailAt = -1;
    long m_CallCount = 0;
    /** Every call in order, with its key. */
    std::vector<std::string> m_Calls;

    std::size_t OpenHandles() const { return m_Handles.size(); }
    std::size_t OpenSets() const { return m_Sets.size(); }

    /** Counts a call and returns whether it must fail. */
    bool Fails(const std::string& call);

private:
    friend struct ScriptedFunctions;

    struct CNode
    {
        Node m_Parent = 0;
        std::vector<Node> m_Children;
        std::map<std::uint32_t, std::vector<char>> m_Properties;
        std::vector<CScriptedDisk> m_Disks;
    };

    CNode* Find(Node node);
    Node Neighbour(Node node) const;
    const CScriptedDisk* FindDisk(const std::string& path) const;

    std::map<Node, CNode> m_Nodes;
    Node m_LastNode = ROOT;
    std::map<void*, std::string> m_Handles; ///< open handles, and the paths that opened them
    std::map<void*, Node> m_Sets;
    std::uintptr_t m_LastHandle = 0x7000'0000;
    std::deque<CImportPatch> m_Patches;
};

/** The scripted devices in use; null: none. */
CScriptedDevices* scriptedDevices();

} // namespace TestSupport
