#ifndef QAL_TOOLS_COMMON_SANITIZED_H_
#define QAL_TOOLS_COMMON_SANITIZED_H_

// gcc and clang tell of sanitizers in ways of their own.
#ifdef __has_feature
#define QAL_HAS_FEATURE(name) __has_feature(name)
#else
#define QAL_HAS_FEATURE(name) 0
#endif

namespace qal::tools {

/// Whether this program is built with the sanitizer of addresses, which has an allocator of its
/// own.
#if defined(__SANITIZE_ADDRESS__) || QAL_HAS_FEATURE(address_sanitizer)
constexpr bool kAddressSanitizer = true;
#else
constexpr bool kAddressSanitizer = false;
#endif
/// Whether it is built with one that reserves terabytes.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || \
    QAL_HAS_FEATURE(address_sanitizer) || QAL_HAS_FEATURE(thread_sanitizer)
constexpr bool kLargeSanitizer = true;
#else
constexpr bool kLargeSanitizer = false;
#endif

}  // namespace qal::tools

#undef QAL_HAS_FEATURE

#endif  // QAL_TOOLS_COMMON_SANITIZED_H_
