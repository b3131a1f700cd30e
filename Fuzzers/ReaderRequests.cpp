// Packets that a client sends to the reader. Each gets as many answers as it asks for, or one refusal.
#include "Input.h"
#include "Reader/Connection.h"
#include "Reader/FakeController.h"

#include <TLXX/Linux/ReaderProtocol.h>

#include <bit>
#include <optional>
#include <thread>

#include <Reader/Server.h>

namespace {

/** More packets than this could fill the buffer of a connection that nobody reads yet. */
constexpr int MOST_PACKETS = 32;

std::size_t answersTo(std::span<const std::uint8_t> packet)
{
    const auto request = TLXX::Linux::parseReaderRequest(packet);
    return request ? static_cast<std::size_t>(std::popcount(request->m_Commands)) : 1;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto controllers = std::make_shared<ReaderTest::FakeControllers>();
    auto [ours, theirs] = ReaderTest::connectedPair();
    const ReaderTest::Connection client(std::move(ours));
    std::optional<Reader::Server> server;
    server.emplace(std::move(theirs), TLX::Linux::CDescriptor(), controllers->opening());
    std::size_t owed = 0;
    Fuzz::Input input(data, size);
    for (int i = 0; i < MOST_PACKETS && !input.empty(); ++i)
        // An empty packet ends a connection.
        if (const auto packet = input.piece(); !packet.empty() && client.trySend(packet))
            owed += answersTo(packet);
    std::thread thread([&server] { server->run(); });
    for (; owed != 0; --owed)
        Fuzz::require(TLXX::Linux::parseReaderReply(client.receive()).has_value());
    server->stop();
    thread.join();
    server.reset();
    // Nothing waits for the threads that asked the drives, but what they still hold would count as a leak.
    while (controllers.use_count() > 1)
        std::this_thread::yield();
    return 0;
}
