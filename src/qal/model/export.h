#ifndef QAL_MODEL_EXPORT_H_
#define QAL_MODEL_EXPORT_H_

/// Marks what the shared library exports; everything else is built hidden.
#ifndef QAL_API
#define QAL_API __attribute__((visibility("default")))
#endif

#endif  // QAL_MODEL_EXPORT_H_
