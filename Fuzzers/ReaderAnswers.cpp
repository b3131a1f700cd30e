// Packets that a reader sends to the program. Each command gets one answer, and a good one is whole.
#include "Drives_Linux/ReaderClient.h"
#include "Input.h"
#include "Reader/Connection.h"

#include <utility>

namespace {

const std::vector<TLXX::CDriveCommand> COMMANDS = {{TLXX::EQuery::IdentifyController, 0},
                                                   {TLXX::EQuery::IdentifyNamespace, 0},
                                                   {TLXX::EQuery::SmartHealthLog, 0},
                                                   {TLXX::EQuery::VendorLog, 0xCA},
                                                   {TLXX::EQuery::VendorLog, 0x77}};

constexpr std::size_t DRIVES = 3;

std::size_t lengthOf(const TLXX::CDriveCommand& command)
{
    const bool isIdentify = command.m_Query == TLXX::EQuery::IdentifyController ||
                            command.m_Query == TLXX::EQuery::IdentifyNamespace;
    return isIdentify ? sizeof(TLXX::NVME_IDENTIFY_CONTROLLER) : sizeof(TLXX::VendorLogPage);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    auto ends = ReaderTest::connectedPair();
    auto& [ours, theirs] = ends;
    Host::ReaderClient client([&ours = ends[0]] {
        if (!ours.Valid())
            throw std::system_error(ECONNREFUSED, std::generic_category());
        return std::exchange(ours, {});
    });
    for (std::size_t drive = 0; drive < DRIVES; ++drive) {
        const std::string number = std::to_string(drive);
        client.Submit({"/dev/nvme" + number + "n1", "/dev/nvme" + number + " 7 1"}, COMMANDS);
    }
    Fuzz::Input input(data, size);
    while (!input.empty()) {
        const auto packet = input.piece();
        (void)::send(theirs.Get(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    }
    theirs = {};
    std::size_t answers = 0;
    while (const auto answer = client.Wait(0)) {
        Fuzz::require(answer->m_Block.size() == (answer->m_Status == 0 ? lengthOf(answer->m_Command) : 0));
        ++answers;
    }
    Fuzz::require(answers == DRIVES * COMMANDS.size());
    return 0;
}
