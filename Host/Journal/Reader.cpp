#include "Journal/Reader.h"

#include "Base/Failure.h"
#include "Base/Text.h"
#include "Journal/Schema.h"

#include <algorithm>
#include <limits>
#include <system_error>
#include <utility>

namespace Host::Journal {
namespace {

template<typename Value>
Value known(const std::optional<Value>& value, std::uint64_t number, const std::string& word)
{
    if (!value)
        throw Sqlite::Error(Sqlite::Trouble::Other,
                            "entry " + std::to_string(number) +
                                " has a word that this release does not know: " + printable(word));
    return *value;
}

NumberedEntry entryOf(const Sqlite::Statement& row)
{
    enum Column : int
    {
        NUMBER,
        KIND,
        PHASE,
        SEVERITY,
        EVENT,
        KEY,
        NAME,
        DEVICE,
        VENDOR,
        MODEL,
        SERIAL,
        LOCATION,
        PCI_ADDRESS,
        PLACE,
        TEXT,
        BEGIN,
        END,
    };
    NumberedEntry result{row.number(NUMBER), {}};
    Entry& entry = result.m_Entry;
    entry.m_Kind = known(kindByName(row.text(KIND)), result.m_Number, row.text(KIND));
    entry.m_Phase = known(phaseByName(row.text(PHASE)), result.m_Number, row.text(PHASE));
    entry.m_Severity = static_cast<Severity>(row.number(SEVERITY));
    if (!row.isNull(EVENT))
        entry.m_Event = static_cast<std::uint32_t>(row.number(EVENT));
    entry.m_Key = row.text(KEY);
    entry.m_Drive = {row.text(NAME),        row.text(DEVICE),
                     row.text(VENDOR),      row.text(MODEL),
                     row.text(SERIAL),      row.text(LOCATION),
                     row.text(PCI_ADDRESS), static_cast<Cli::ShownPlace>(row.number(PLACE))};
    entry.m_Text = row.text(TEXT);
    if (!row.isNull(BEGIN))
        entry.m_Begin = row.number(BEGIN);
    entry.m_End = row.number(END);
    return result;
}

} // namespace

Reader::Reader(std::filesystem::path file) : m_File(std::move(file)) {}

std::vector<NumberedEntry> Reader::read(std::uint64_t after, std::size_t limit, std::uint64_t since)
{
    return ask([=](Sqlite::Connection& connection) {
        std::vector<NumberedEntry> entries;
        Sqlite::Statement rows = connection.prepare(
            "SELECT * FROM Entry WHERE Number > ? AND EndTime >= ? ORDER BY Number LIMIT ?");
        constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
        rows.bind(std::min(after, most), std::min(since, most), std::min<std::uint64_t>(limit, most));
        while (rows.step())
            entries.push_back(entryOf(rows));
        return entries;
    });
}

void Reader::close()
{
    const std::lock_guard<std::mutex> guard(m_Lock);
    m_Connection.reset();
}

std::uint64_t Reader::lastNumber()
{
    return ask(
        [](Sqlite::Connection& connection) { return connection.number("SELECT MAX(Number) FROM Entry"); });
}

template<typename Question>
auto Reader::ask(Question question) -> std::invoke_result_t<Question, Sqlite::Connection&>
{
    const std::lock_guard<std::mutex> guard(m_Lock);
    try {
        return askOnce(question);
    } catch (const Sqlite::Error&) {
        // The service may have started or ended just now, and the connection does not fit its file any more.
        m_Connection.reset();
    }
    try {
        return askOnce(question);
    } catch (const Sqlite::Error& error) {
        m_Connection.reset();
        throw failureOf(m_File, "read", error);
    }
}

template<typename Question>
auto Reader::askOnce(Question& question) -> std::invoke_result_t<Question, Sqlite::Connection&>
{
    if (m_Connection && (m_Connection->isFrozen() || m_Connection->hasMoved()))
        m_Connection.reset();
    if (!m_Connection) {
        std::error_code error;
        if (!std::filesystem::exists(m_File, error) && !error)
            throw Failure(ExitCode::RequestFailed, "There is no journal " + printable(m_File.string()) +
                                                       " yet. The service writes it: ostrel serve");
        Sqlite::Connection connection = Sqlite::Connection::toRead(m_File);
        if (!hasTables(connection))
            return {};
        refuseForeign(connection, m_File);
        m_Connection.emplace(std::move(connection));
    }
    return question(*m_Connection);
}

} // namespace Host::Journal
