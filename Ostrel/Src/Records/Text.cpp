#include "Records/Text.h"

#include <algorithm>
#include <locale>

namespace NAMESPACE_Ostrel {

bool equalIgnoringCase(std::string_view left, std::string_view right)
{
    const auto& letters = std::use_facet<std::ctype<char>>(std::locale::classic());
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return letters.toupper(a) == letters.toupper(b); });
}

} // namespace NAMESPACE_Ostrel
