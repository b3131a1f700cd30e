#include "Host/Built.h"

namespace HostTest::Built {

const char PROGRAM[] = OSTREL_PROGRAM;
const char PLUGIN[] = OSTREL_PLUGIN;
const char SHARE[] = OSTREL_SHARE;
const char WRONG_VERSION_PLUGIN[] = OSTREL_WRONG_VERSION_PLUGIN;
const char NO_MEMORY_PLUGIN[] = OSTREL_NO_MEMORY_PLUGIN;
const char REFUSING_PLUGIN[] = OSTREL_REFUSING_PLUGIN;
const char SECOND_PLUGIN[] = OSTREL_SECOND_PLUGIN;
const char SLOW_PLUGIN[] = OSTREL_SLOW_PLUGIN;
const char SLOW_TO_START_PLUGIN[] = OSTREL_SLOW_TO_START_PLUGIN;
const char NO_PLUGIN[] = OSTREL_NO_PLUGIN;

} // namespace HostTest::Built
