#include <PI/IPluginApi.h>

// Out of line, so that host and plug-in share one virtual table and one type information.
IPLUGINAPI::~IPLUGINAPI() = default;
