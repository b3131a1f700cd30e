#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace TLXXTest {

/** The status of a query when the drive filled less than the block. */
inline constexpr std::uint32_t SHORT_TRANSFER = 0x20000;

/** An admin command as it must reach the kernel. All other fields must be zero. */
struct CExpectedCommand
{
    std::string m_Node;
    std::uint8_t m_Opcode = 0;
    std::uint32_t m_NamespaceId = 0;
    std::uint32_t m_Word10 = 0;
    std::uint32_t m_Length = 0;
    std::uint32_t m_Word12 = 0;
};

/** What the kernel then does: moves the bytes and returns. */
struct CReply
{
    std::vector<std::uint8_t> m_Data;
    int m_Result = 0;
    int m_Error = 0;                        ///< errno of a result below 0
    std::function<void()> m_Meanwhile = {}; ///< what else happens while the command runs
};

/**
 * Replaces the kernel for the NVMe nodes below /dev while it lives. This program's `open` and `ioctl` precede
 * the C library's for all its libraries. Only provided nodes exist. On destruction, every expected command
 * must have come and every opened node must be closed.
 */
class CScriptedKernel
{
public:
    CScriptedKernel();
    ~CScriptedKernel();
    CScriptedKernel(const CScriptedKernel&) = delete;
    CScriptedKernel& operator=(const CScriptedKernel&) = delete;

    void Provide(const std::string& node);
    void Refuse(const std::string& node, int error);
    /** Expects this command next, in order, and provides its node. */
    void Expect(const CExpectedCommand& command, CReply reply);

    /** -1 with errno set, or a descriptor. */
    int Open(const std::string& node, int flags);
    bool Owns(int descriptor);
    /** How often a node was opened so far. */
    int Openings();
    /** How many of the opened nodes are open now. */
    int StillOpen();
    /** Whether a cancellation could have broken off the last command at any instruction. */
    bool WasInterruptible() const { return m_Interruptible; }
    int Control(int descriptor, unsigned long request, void* argument);

private:
    struct CStep
    {
        CExpectedCommand m_Command;
        CReply m_Reply;
    };

    std::atomic<bool> m_Interruptible = false;
    std::mutex m_Lock;
    std::map<std::string, int> m_Nodes; ///< the provided nodes, and the error when one is opened
    std::map<int, std::string> m_Opened;
    int m_Openings = 0;
    std::deque<CStep> m_Script;
};

} // namespace TLXXTest
