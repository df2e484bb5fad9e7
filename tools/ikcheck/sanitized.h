#ifndef QAL_TOOLS_IKCHECK_SANITIZED_H_
#define QAL_TOOLS_IKCHECK_SANITIZED_H_

// QAL_ADDRESS_SANITIZER, where this program has one, with an allocator of its own; QAL_SANITIZER,
// where it has any that reserves terabytes.

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QAL_ADDRESS_SANITIZER
#endif
#if __has_feature(thread_sanitizer)
#define QAL_SANITIZER
#endif
#endif

#ifdef __SANITIZE_ADDRESS__
#define QAL_ADDRESS_SANITIZER
#endif
#ifdef __SANITIZE_THREAD__
#define QAL_SANITIZER
#endif

#ifdef QAL_ADDRESS_SANITIZER
#define QAL_SANITIZER
#include <sanitizer/allocator_interface.h>
#endif

#endif  // QAL_TOOLS_IKCHECK_SANITIZED_H_
