#pragma once

#include <atomic>
#include <functional>

/**
 * System functions that replace the C library's in this program. They call the original unless a test sets
 * something else.
 */
namespace SystemCalls {

extern std::atomic<bool> g_RefuseMutex; ///< `pthread_mutex_init` fails
extern std::atomic<bool> g_RefuseEvent; ///< `eventfd` fails

/** Replaces `ppoll` when set, and gets the call's arguments. Set it only while no other thread waits. */
extern std::function<int(const std::function<int()>&)> g_Poll;

} // namespace SystemCalls
