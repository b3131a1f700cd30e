#pragma once

#include "Base/Sqlite.h"
#include "Journal/NumberedEntry.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <type_traits>
#include <vector>

namespace Host::Journal {

/** Reads the service's journal, also while another process or thread writes it. Safe from any thread. */
class Reader
{
public:
    /** Of `file`, which need not be there yet. */
    explicit Reader(std::filesystem::path file);

    /**
     * At most `limit` entries with numbers above `after`, in order. Without those of looks before `since`, in
     * milliseconds since 1970. The clock may have been set, so times need not be in order. Throws `Failure`.
     */
    std::vector<NumberedEntry> read(std::uint64_t after, std::size_t limit, std::uint64_t since = 0);

    /** Lets go of the file until the next question. */
    void close();

    /** The number of the last entry; 0: there is none. Throws `Failure`. */
    std::uint64_t lastNumber();

private:
    template<typename Question>
    auto ask(Question question) -> std::invoke_result_t<Question, Sqlite::Connection&>;
    template<typename Question>
    auto askOnce(Question& question) -> std::invoke_result_t<Question, Sqlite::Connection&>;

    const std::filesystem::path m_File;
    std::mutex m_Lock;
    std::optional<Sqlite::Connection> m_Connection; ///< kept from one call to the next where possible
};

} // namespace Host::Journal
