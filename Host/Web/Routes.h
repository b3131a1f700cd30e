#pragma once

#include "Plugins/ObjectStore.h"
#include "Web/Exchange.h"
#include "Web/ServiceView.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Host::Web {

/** How a text for people is written. */
struct TextForm
{
    unsigned m_Columns = 0; ///< of the terminal; 0: lines may have any length
    bool m_Colours = false;
};

/** What `ostrel show` prints of objects, which are in the store. */
using ShowText =
    std::function<std::string(const ObjectStore&, const std::vector<const PI::CObject*>&, const TextForm&)>;

/** Answers the requests of the service's interface from `view`, which must outlive it. */
Handler routes(IServiceView& view, ShowText showText);

/**
 * Where paths that `routes` knows begin, once for each path of the interface's description. The names that go
 * on after them are left out.
 */
std::vector<std::string_view> routePaths();

} // namespace Host::Web
