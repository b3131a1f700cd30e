#include <TLX/Utf8.h>

#include <boost/locale/utf.hpp>

namespace TLX::Misc {

CUtf8Character firstCharacter(std::string_view text)
{
    namespace utf = boost::locale::utf;
    const char* position = text.data();
    const utf::code_point codePoint = utf::utf_traits<char>::decode(position, text.data() + text.size());
    if (codePoint == utf::illegal || codePoint == utf::incomplete)
        return {false, static_cast<unsigned char>(text.front()), 1};
    return {true, codePoint, static_cast<std::size_t>(position - text.data())};
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const CUtf8Character character = firstCharacter(text);
        if (!character.m_Valid)
            return false;
        text.remove_prefix(character.m_Length);
    }
    return true;
}

} // namespace TLX::Misc
