#include "Web_Linux/LocalAddress.h"

#include "Base/Failure.h"

#include <iterator>

namespace Host::Web {

LocalAddress::LocalAddress(const std::filesystem::path& path)
{
    const std::string& text = path.native();
    if (text.empty() || text.size() >= std::size(m_Address.sun_path))
        throw Failure(ExitCode::RequestFailed, "The path " + text + " is too long for a socket.");
    m_Address.sun_family = AF_UNIX;
    text.copy(std::data(m_Address.sun_path), text.size());
}

} // namespace Host::Web
