#include <TLX/TraceStreamBuffer.h>

#include <cctype>

namespace TLX::Internals {
namespace {

constexpr std::string_view OPERATOR = "operator";

bool isIdentifier(char character)
{
    return character == '_' || std::isalnum(static_cast<unsigned char>(character)) != 0;
}

bool isOperatorAt(std::string_view text, std::size_t position)
{
    if (!text.substr(position).starts_with(OPERATOR) || (position > 0 && isIdentifier(text[position - 1])))
        return false;
    const std::size_t behind = position + OPERATOR.size();
    return behind < text.size() && !isIdentifier(text[behind]);
}

/** The position of the arguments of an operator function, whose keyword is at `position`. */
std::size_t operatorArguments(std::string_view text, std::size_t position)
{
    position += OPERATOR.size();
    if (text.substr(position).starts_with("()"))
        position += 2;
    else
        position = text.find_first_not_of("<>=!+-*/%^&|~,[]", position);
    int depth = 0;
    for (; position < text.size(); ++position) {
        if (text[position] == '(' && depth == 0)
            return position;
        if (text[position] == '<')
            ++depth;
        if (text[position] == '>')
            --depth;
    }
    return text.size();
}

} // namespace

std::string_view qualifiedName(std::string_view prettyFunction)
{
    const std::string_view text = prettyFunction;
    const auto orAll = [text](std::string_view name) { return name.empty() ? text : name; };
    std::size_t begin = 0;
    int depth = 0;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const std::string_view rest = text.substr(position);
        if (rest.front() == '>' && depth > 0)
            --depth;
        if (depth > 0) {
            if (rest.front() == '<')
                ++depth;
            continue;
        }
        const std::string_view name = text.substr(begin, position - begin);
        if (isOperatorAt(text, position))
            return text.substr(begin, operatorArguments(text, position) - begin);
        switch (rest.front()) {
        case ' ':
        case '*':
        case '&':
            begin = position + 1;
            break;
        case '<':
            // A lambda has the name of the function around it.
            if (rest.starts_with("<lambda"))
                return orAll(name.ends_with("::") ? name.substr(0, name.size() - 2) : name);
            ++depth;
            break;
        case '(':
            if (rest.starts_with("(anonymous ") || name == "decltype")
                position = text.find(')', position);
            else if (name.empty())
                begin =
                    position + 1; // the result is a pointer to a function, whose parentheses enclose the name
            else
                return name;
            if (position == std::string_view::npos)
                return text;
            break;
        default:
            break;
        }
    }
    return orAll(text.substr(begin));
}

} // namespace TLX::Internals
