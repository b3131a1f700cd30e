#include "Drives/MachineDrives.h"

#include "Base/Failure.h"
#include "Base/Platform.h"
#include "Base/Text.h"
#include "Drives_Linux/ReaderClient.h"
#include "Drives_Linux/Readers.h"

#include <system_error>
#include <utility>

namespace Host {
namespace {

using TLX::Linux::CDescriptor;

/** The first connection is `first`; later ones are new. */
ConnectReader readerAt(const std::filesystem::path& socket, CDescriptor first)
{
    return [socket, first = std::make_shared<CDescriptor>(std::move(first))] {
        return first->Valid() ? std::exchange(*first, {}) : connectReader(socket);
    };
}

std::filesystem::path privateReaderProgram()
{
    return Platform::programFolder().parent_path() / OSTREL_READER_FILE;
}

} // namespace

MachineDrives machineDrives(const std::optional<std::filesystem::path>& reader)
{
    const std::filesystem::path socket = reader.value_or(usualReader());
    try {
        return {std::make_unique<ReaderClient>(readerAt(socket, connectReader(socket))), false};
    } catch (const std::system_error& error) {
        if (reader)
            throw Failure(ExitCode::NoPermission, "No reader can be used at " + printable(socket.string()) +
                                                      ": " + error.code().message() + ".");
    }
    const auto own = std::make_shared<PrivateReader>(privateReaderProgram());
    return {std::make_unique<ReaderClient>([own] { return own->start(); }), true};
}

} // namespace Host
