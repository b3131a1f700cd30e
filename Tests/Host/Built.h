#pragma once

// The places of the files that the tests load and run, in this build. Other sources do not include it, so
// that their objects do not depend on the place of the build.
namespace HostTest::Built {

extern const char PROGRAM[];
extern const char PLUGIN[];
extern const char SHARE[]; ///< the folder of the catalogue and the other data files
extern const char WRONG_VERSION_PLUGIN[];
extern const char NO_MEMORY_PLUGIN[];
extern const char REFUSING_PLUGIN[];
extern const char THROWING_PLUGIN[];
extern const char SECOND_PLUGIN[];        ///< one of another module
extern const char CRASHING_PLUGIN[];      ///< ends the process at its first request
extern const char SLOW_PLUGIN[];          ///< takes 24,999 ms to end
extern const char SLOW_TO_START_PLUGIN[]; ///< request 1 does not return
extern const char NO_PLUGIN[];            ///< a file that is no library
extern const char READER[];               ///< the reader of drives; empty where there is none

} // namespace HostTest::Built
