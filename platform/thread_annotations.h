#pragma once

/// Clang's thread-safety annotations under short names; other compilers see nothing.
/// The members of a class say with IORDER_GUARDED_BY which lock they need, its operations with
/// IORDER_REQUIRES which lock the caller must hold; `-Wthread-safety` then proves it.
#if defined(__clang__)
#define IORDER_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define IORDER_THREAD_ANNOTATION(x)
#endif

#define IORDER_CAPABILITY(x) IORDER_THREAD_ANNOTATION(capability(x))
#define IORDER_SCOPED_CAPABILITY IORDER_THREAD_ANNOTATION(scoped_lockable)
#define IORDER_GUARDED_BY(x) IORDER_THREAD_ANNOTATION(guarded_by(x))
#define IORDER_PT_GUARDED_BY(x) IORDER_THREAD_ANNOTATION(pt_guarded_by(x))
#define IORDER_REQUIRES(...) IORDER_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define IORDER_ACQUIRE(...) IORDER_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define IORDER_RELEASE(...) IORDER_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define IORDER_EXCLUDES(...) IORDER_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define IORDER_NO_THREAD_SAFETY_ANALYSIS IORDER_THREAD_ANNOTATION(no_thread_safety_analysis)
