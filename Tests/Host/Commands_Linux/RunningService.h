#pragma once

#include "Host/Commands_Linux/RunProgram.h"
#include "Host/Web_Linux/RawClient.h"
#include "Support/TemporaryFolder.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace HostTest {

/** A fleet file that a test changes while programs read it. */
class ChangingFleet
{
public:
    /** A drive that answers, in a slot of its own. `manner` adds members or replaces them. */
    static nlohmann::json drive(const std::string& serial, int bus,
                                const nlohmann::json& manner = nlohmann::json::object());

    /** Replaces the file as a whole. */
    void set(const std::vector<nlohmann::json>& drives) const;

    std::string file() const { return (m_Folder.Path() / "fleet.json").string(); }

private:
    TestSupport::CTemporaryFolder m_Folder;
};

/** A service that was started on a free port. */
class RunningService
{
public:
    /** Waits until it listens. */
    explicit RunningService(const std::vector<std::string>& words, const Environment& environment = {});

    RawAnswer get(const std::string& path) const;

    /** The document at a path. */
    nlohmann::json document(const std::string& path) const;

    /** The entries of the journal after number `after`. */
    nlohmann::json entries(std::uint64_t after = 0) const;

    /** Asks again and again until `isTrue`. Throws after a minute. */
    void await(const std::function<bool()>& isTrue) const;

    /** Waits until the journal has an entry of this kind about this drive. */
    void awaitEntry(std::string_view kind, std::string_view serial) const;

    const std::string& url() const { return m_Url; }

    RunningProgram& program() { return m_Program; }

    /** Asks it to end, and waits for that. */
    ProgramResult end();

private:
    RunningProgram m_Program;
    std::string m_Url;
};

} // namespace HostTest
