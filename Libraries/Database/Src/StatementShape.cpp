#include "StatementShape.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <utility>

namespace Database {
namespace {

/** Settings, some of which take effect while their text is understood, are not among these. */
constexpr std::string_view VERBS[] = {"SELECT ", "INSERT ", "UPDATE ", "DELETE "};

/** Behind these a number may be that of a column. */
constexpr std::string_view ORDINAL_CLAUSES[] = {"ORDER", "GROUP"};

/** Any number of so few digits is a 64-bit integer. */
constexpr std::size_t DIGITS = 18;

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isLetter(char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           character == '_' || static_cast<unsigned char>(character) >= 0x80;
}

bool isWordCharacter(char character)
{
    return isLetter(character) || isDigit(character) || character == '$' || character == '.';
}

bool isOrdinalClause(std::string_view word)
{
    const auto same = [](char upper, char any) { return upper == any || (upper | 0x20) == any; };
    return std::any_of(std::begin(ORDINAL_CLAUSES), std::end(ORDINAL_CLAUSES),
                       [&](std::string_view clause) { return std::ranges::equal(clause, word, same); });
}

/** Goes through a statement from its begin to its end. */
class CReader
{
public:
    explicit CReader(std::string_view sql) : m_Rest(sql) { m_Shape.m_Text.reserve(sql.size()); }

    std::optional<CStatementShape> Read()
    {
        while (!m_Rest.empty())
            if (!Take())
                return std::nullopt;
        return std::move(m_Shape);
    }

private:
    bool Take()
    {
        constexpr std::string_view HARMLESS = " (),=<>*.+|";
        const char first = m_Rest.front();
        if (first == '\'')
            return TakeText();
        if (isDigit(first) || isLetter(first))
            return TakeWord();
        // Comments, other quotes, parameters and further statements are not worth telling apart.
        const bool isEnd = first == ';' && m_Rest.size() == 1;
        const bool isMinus = first == '-' && !m_Rest.substr(1).starts_with('-');
        if (!isEnd && !isMinus && HARMLESS.find(first) == std::string_view::npos)
            return false;
        m_Shape.m_Text += first;
        m_Rest.remove_prefix(1);
        return true;
    }

    bool TakeText()
    {
        std::string text;
        for (std::size_t begin = 1;;) {
            const std::size_t quote = m_Rest.find('\'', begin);
            if (quote == std::string_view::npos)
                return false;
            text += m_Rest.substr(begin, quote - begin);
            begin = quote + 1;
            if (!m_Rest.substr(begin).starts_with('\'')) {
                m_Rest.remove_prefix(begin);
                break;
            }
            text += '\'';
            ++begin;
        }
        Add(std::move(text));
        return true;
    }

    bool TakeWord()
    {
        const auto end = std::find_if_not(m_Rest.begin(), m_Rest.end(), isWordCharacter);
        const std::string_view word = m_Rest.substr(0, static_cast<std::size_t>(end - m_Rest.begin()));
        m_Rest.remove_prefix(word.size());
        // A text right behind a word is of another kind, such as x'00'.
        if (m_Rest.starts_with('\'') || isOrdinalClause(word))
            return false;
        std::int64_t number = 0;
        const auto [stop, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (word.size() <= DIGITS && error == std::errc() && stop == word.data() + word.size())
            Add(number);
        else
            m_Shape.m_Text += word;
        return true;
    }

    void Add(CStatementShape::Value value)
    {
        m_Shape.m_Text += '?';
        m_Shape.m_Values.push_back(std::move(value));
    }

    std::string_view m_Rest;
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
