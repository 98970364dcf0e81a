// What every public header needs of the compiler: symbol visibility, printf-format checks, lock annotations.
#pragma once

/// Marks a class or function that the shared library exports.
#if defined(ORTHA_STATIC)
#define ORTHA_API
#elif defined(_WIN32)
#if defined(ORTHA_BUILDING)
#define ORTHA_API __declspec(dllexport)
#else
#define ORTHA_API __declspec(dllimport)
#endif
#else
#define ORTHA_API __attribute__((visibility("default")))
#endif

/// Marks what a module of the library's user exports, such as the creator of a class that is loaded when it is asked for.
#if defined(_WIN32)
#define ORTHA_EXPORT __declspec(dllexport)
#else
#define ORTHA_EXPORT __attribute__((visibility("default")))
#endif

/// Has the compiler check a printf-like call: argument number `text` is the format, the values start at argument `first`
/// (0 for a va_list). Arguments count from 1; an object's own pointer is one of them.
#if defined(__MINGW32__)  // where the plain word means the conversions of the system's C runtime
#define ORTHA_PRINTF(text, first) __attribute__((format(gnu_printf, text, first)))
#elif defined(__GNUC__)
#define ORTHA_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define ORTHA_PRINTF(text, first)
#endif

// Lock annotations, which clang checks with -Wthread-safety and other compilers do not see.
#if defined(__clang__)
#define ORTHA_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define ORTHA_THREAD_ANNOTATION(x)
#endif

#define ORTHA_CAPABILITY(name) ORTHA_THREAD_ANNOTATION(capability(name))
#define ORTHA_SCOPED_CAPABILITY ORTHA_THREAD_ANNOTATION(scoped_lockable)
#define ORTHA_GUARDED_BY(lock) ORTHA_THREAD_ANNOTATION(guarded_by(lock))
#define ORTHA_PT_GUARDED_BY(lock) ORTHA_THREAD_ANNOTATION(pt_guarded_by(lock))
#define ORTHA_REQUIRES(...) ORTHA_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define ORTHA_ACQUIRE(...) ORTHA_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define ORTHA_RELEASE(...) ORTHA_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define ORTHA_TRY_ACQUIRE(...) ORTHA_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define ORTHA_NO_THREAD_SAFETY_ANALYSIS ORTHA_THREAD_ANNOTATION(no_thread_safety_analysis)
