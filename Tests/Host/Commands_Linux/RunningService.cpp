#include "Host/Commands_Linux/RunningService.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

namespace HostTest {

using nlohmann::json;

json ChangingFleet::drive(const std::string& serial, int bus, const json& manner)
{
    json result = {
        {"location", "0000:0" + std::to_string(bus) + ":00.0"},
        {"identify", {{"vendorId", 0x8086}, {"model", "INTEL MODEL"}, {"serial", serial}, {"firmware", "1"}}},
        {"namespace", {{"blocks", 204800}}},
        {"health", {{"temperature", 20}}}};
    result.merge_patch(manner);
    return result;
}

void ChangingFleet::set(const std::vector<json>& drives) const
{
    const json fleet = {{"controllers", drives}};
    std::filesystem::rename(m_Folder.Write("next", fleet.dump()), file());
}

RunningService::RunningService(const std::vector<std::string>& words, const Environment& environment)
    : m_Program(
          [&words] {
              std::vector<std::string> all = words;
              all.insert(all.end(), {"serve", "--listen", "127.0.0.1:0"});
              return all;
          }(),
          0, environment)
{
    (void)m_Program.awaitMessage("Listening on ");
    m_Url = m_Program.awaitMessage("\n");
    m_Url.pop_back();
}

RawAnswer RunningService::get(const std::string& path) const
{
    return askOnce(m_Url, path);
}

json RunningService::document(const std::string& path) const
{
    return json::parse(get(path).m_Body);
}

json RunningService::entries(std::uint64_t after) const
{
    return document("/api/v1/journal?after=" + std::to_string(after) + "&limit=1000").at("entries");
}

void RunningService::await(const std::function<bool()>& isTrue) const
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!isTrue()) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("not in time: " + entries().dump(1));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

void RunningService::awaitEntry(std::string_view kind, std::string_view serial) const
{
    await([&] {
        const json all = entries();
        return std::any_of(all.begin(), all.end(), [&](const json& entry) {
            return entry["kind"] == kind && entry.contains("drive") &&
                   entry["drive"].value("serial", "") == serial;
        });
    });
}

ProgramResult RunningService::end()
{
    m_Program.send(SIGTERM);
    return m_Program.finish();
}

} // namespace HostTest
