#include "Ostrel/KnownControllers.h"

namespace NAMESPACE_Ostrel {

const std::vector<std::string> g_KnownControllers = {"80864140", "144DA822", "1E0F0007", "134451C3"};

} // namespace NAMESPACE_Ostrel
