#ifndef QAL_CORE_EXPORT_H_
#define QAL_CORE_EXPORT_H_

/// Marks what the shared library exports; everything else is built hidden.
#define QAL_API __attribute__((visibility("default")))

#endif  // QAL_CORE_EXPORT_H_
