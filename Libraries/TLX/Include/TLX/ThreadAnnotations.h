#pragma once

// Clang's thread-safety annotations; empty for other compilers. The preset `asan` enforces them.
#if defined(__clang__)
#define TLX_ANNOTATION(x) __attribute__((x))
#else
#define TLX_ANNOTATION(x)
#endif

#define TLX_CAPABILITY(name) TLX_ANNOTATION(capability(name))
#define TLX_SCOPED_CAPABILITY TLX_ANNOTATION(scoped_lockable)
#define TLX_GUARDED_BY(lock) TLX_ANNOTATION(guarded_by(lock))
#define TLX_REQUIRES(...) TLX_ANNOTATION(requires_capability(__VA_ARGS__))
#define TLX_ACQUIRE(...) TLX_ANNOTATION(acquire_capability(__VA_ARGS__))
#define TLX_RELEASE(...) TLX_ANNOTATION(release_capability(__VA_ARGS__))
#define TLX_EXCLUDES(...) TLX_ANNOTATION(locks_excluded(__VA_ARGS__))
#define TLX_NO_THREAD_SAFETY_ANALYSIS TLX_ANNOTATION(no_thread_safety_analysis)
