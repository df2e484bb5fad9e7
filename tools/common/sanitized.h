#ifndef QAL_TOOLS_COMMON_SANITIZED_H_
#define QAL_TOOLS_COMMON_SANITIZED_H_

// gcc and clang tell of sanitizers in ways of their own.
#ifdef __has_feature
#define QAL_HAS_FEATURE(name) __has_feature(name)
#else
#define QAL_HAS_FEATURE(name) 0
#endif

namespace qal::tools {

/// Whether this program is built with a sanitizer. The one of addresses has an allocator of its own;
/// it and that of threads reserve terabytes.
#if defined(__SANITIZE_ADDRESS__) || QAL_HAS_FEATURE(address_sanitizer)
constexpr bool kAddressSanitizer = true;
#else
constexpr bool kAddressSanitizer = false;
#endif
#if defined(__SANITIZE_THREAD__) || QAL_HAS_FEATURE(thread_sanitizer)
constexpr bool kThreadSanitizer = true;
#else
constexpr bool kThreadSanitizer = false;
#endif

}  // namespace qal::tools

#undef QAL_HAS_FEATURE

#endif  // QAL_TOOLS_COMMON_SANITIZED_H_
