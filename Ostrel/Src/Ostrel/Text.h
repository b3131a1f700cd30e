#pragma once

#include <boost/format.hpp>

#include <locale>
#include <string>
#include <string_view>

namespace NAMESPACE_Ostrel {

/** Whether two texts of one length are the same but for the case of letters, whatever the process's locale.
 */
bool equalIgnoringCase(std::string_view left, std::string_view right);

/** A text in the manner of `printf`, whatever the process's locale: some group digits. */
template<typename... Arguments>
std::string formatted(const char* format, const Arguments&... arguments)
{
    boost::format text(format, std::locale::classic());
    return (text % ... % arguments).str();
}

} // namespace NAMESPACE_Ostrel
