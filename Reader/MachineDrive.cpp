#include "MachineDrive.h"

#include <TLXX/Linux/ControllerNode.h>
#include <TLXX/Linux/ReaderProtocol.h>

namespace Reader {
namespace {

class MachineDrive : public IDrive
{
public:
    explicit MachineDrive(const Controller& controller) : m_Node(controller.first, controller.second) {}

    std::uint32_t ask(const Command& command, std::span<std::uint8_t> block) override
    {
        using namespace TLXX::Linux;
        if (command.m_Kind == ReaderCommand::identifyController)
            return m_Node.IdentifyController(block);
        if (command.m_Kind == ReaderCommand::identifyNamespace)
            return m_Node.IdentifyNamespace(command.m_NamespaceId, block);
        return m_Node.LogPage(readerLogPage(command.m_Kind), command.m_Offset, block);
    }

private:
    const TLXX::Linux::CControllerNode m_Node;
};

} // namespace

std::unique_ptr<IDrive> openMachineDrive(const Controller& controller)
{
    return std::make_unique<MachineDrive>(controller);
}

} // namespace Reader
