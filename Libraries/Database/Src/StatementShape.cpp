#include "StatementShape.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <span>
#include <utility>

namespace Database {
namespace {

/** Statements with settings (PRAGMA) are not listed, because some take effect while they are parsed. */
constexpr std::string_view VERBS[] = {"SELECT ", "INSERT ", "UPDATE ", "DELETE "};

/** After these words a number may be the number of a column. */
constexpr std::string_view ORDINAL_CLAUSES[] = {"ORDER", "GROUP"};

/**
 * Next to these words SQLite may use a number while it prepares the statement, and leave out a part of the
 * work.
 */
constexpr std::string_view JUNCTIONS[] = {"AND", "OR"};

/** What kind of part of a statement a character begins. */
enum class EPart : std::uint8_t
{
    Unknown, ///< comments, other quotes, parameters, further statements: no need to tell them apart
    Harmless,
    Word, ///< begins a name or a number
    Text
};

constexpr auto PARTS = [] {
    std::array<EPart, 256> parts{};
    for (const char character : std::string_view(" (),=<>*+-|"))
        parts[static_cast<unsigned char>(character)] = EPart::Harmless;
    for (unsigned character = 0; character < parts.size(); ++character) {
        const unsigned letter = character | 0x20U;
        if (character >= 0x80 || (letter >= 'a' && letter <= 'z') || (character >= '0' && character <= '9'))
            parts[character] = EPart::Word;
    }
    for (const char character : std::string_view("_."))
        parts[static_cast<unsigned char>(character)] = EPart::Word;
    parts['\''] = EPart::Text;
    return parts;
}();

EPart partOf(char character)
{
    return PARTS[static_cast<unsigned char>(character)];
}

bool isOneOf(std::span<const std::string_view> keywords, std::string_view word)
{
    const auto same = [](char upper, char any) { return upper == any || (upper | 0x20) == any; };
    return std::any_of(keywords.begin(), keywords.end(),
                       [&](std::string_view keyword) { return std::ranges::equal(keyword, word, same); });
}

/** Goes through a statement from its beginning to its end. */
class CReader
{
public:
    explicit CReader(std::string_view sql) : m_Sql(sql)
    {
        constexpr std::size_t MANY_COLUMNS = 32;
        m_Shape.m_Text.reserve(sql.size());
        m_Shape.m_Values.reserve(MANY_COLUMNS);
    }

    std::optional<CStatementShape> Read()
    {
        while (m_Position < m_Sql.size())
            if (!Take())
                return std::nullopt;
        if (m_HasJunction && m_HasNumber)
            return std::nullopt;
        m_Shape.m_Text += m_Sql.substr(m_Taken);
        return std::move(m_Shape);
    }

private:
    bool Take()
    {
        const char first = m_Sql[m_Position];
        switch (partOf(first)) {
        case EPart::Harmless:
            ++m_Position;
            return first != '-' || !m_Sql.substr(m_Position).starts_with('-');
        case EPart::Word:
            return TakeWord();
        case EPart::Text:
            return TakeText();
        default:
            // A semicolon may end the statement.
            return first == ';' && ++m_Position == m_Sql.size();
        }
    }

    bool TakeText()
    {
        const std::size_t begin = m_Position;
        std::string unquoted;
        for (;;) {
            const std::size_t from = m_Position + 1;
            m_Position = m_Sql.find('\'', from);
            if (m_Position == std::string_view::npos)
                return false;
            const std::string_view text = m_Sql.substr(from, m_Position++ - from);
            if (NextIs(EPart::Text)) {
                unquoted.append(text) += '\'';
                continue;
            }
            if (unquoted.empty())
                Add(begin, text);
            else
                Add(begin, m_Shape.m_Unquoted.emplace_front(unquoted.append(text)));
            // SQLite would read the following characters as a part of the parameter's name.
            return !NextIs(EPart::Word);
        }
    }

    bool TakeWord()
    {
        const std::size_t begin = m_Position;
        while (NextIs(EPart::Word))
            ++m_Position;
        const std::string_view word = m_Sql.substr(begin, m_Position - begin);
        // A text directly after a word is of another kind, such as x'00'.
        if (NextIs(EPart::Text) || isOneOf(ORDINAL_CLAUSES, word))
            return false;
        m_HasJunction = m_HasJunction || isOneOf(JUNCTIONS, word);
        std::int64_t number = 0;
        const auto [stop, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (error == std::errc() && stop == word.data() + word.size()) {
            m_HasNumber = true;
            Add(begin, number);
        }
        return true;
    }

    bool NextIs(EPart part) const { return m_Position < m_Sql.size() && partOf(m_Sql[m_Position]) == part; }

    /** Replaces everything from `begin` to the current position by a parameter. */
    void Add(std::size_t begin, CStatementShape::Value value)
    {
        m_Shape.m_Text += m_Sql.substr(m_Taken, begin - m_Taken);
        m_Shape.m_Text += '?';
        m_Shape.m_Values.push_back(value);
        m_Taken = m_Position;
    }

    const std::string_view m_Sql;
    std::size_t m_Position = 0;
    std::size_t m_Taken = 0; ///< everything before this is already in the shape
    bool m_HasJunction = false;
    bool m_HasNumber = false;
    CStatementShape m_Shape;
};

} // namespace

std::optional<CStatementShape> shapeOf(std::string_view sql)
{
    const bool isKnown = std::any_of(std::begin(VERBS), std::end(VERBS),
                                     [sql](std::string_view verb) { return sql.starts_with(verb); });
    return isKnown ? CReader(sql).Read() : std::nullopt;
}

} // namespace Database
