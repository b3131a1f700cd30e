#pragma once

#include <atomic>
#include <functional>

/** The system functions that this program puts before the C library's; they pass on unless told otherwise. */
namespace SystemCalls {

extern std::atomic<bool> g_RefuseMutex; ///< `pthread_mutex_init` fails
extern std::atomic<bool> g_RefuseEvent; ///< `eventfd` fails

/** Stands for `ppoll` when set; gets the call as it would be. Set only while no other thread waits. */
extern std::function<int(const std::function<int()>&)> g_Poll;

} // namespace SystemCalls
