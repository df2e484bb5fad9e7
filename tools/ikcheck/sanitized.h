#ifndef QAL_TOOLS_IKCHECK_SANITIZED_H_
#define QAL_TOOLS_IKCHECK_SANITIZED_H_

namespace qal::ikcheck {

/// Whether this program is built with a sanitizer of gcc. The one of addresses has an allocator of
/// its own; it and that of threads reserve terabytes.
#ifdef __SANITIZE_ADDRESS__
constexpr bool kAddressSanitizer = true;
#else
constexpr bool kAddressSanitizer = false;
#endif
#ifdef __SANITIZE_THREAD__
constexpr bool kThreadSanitizer = true;
#else
constexpr bool kThreadSanitizer = false;
#endif

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_SANITIZED_H_
