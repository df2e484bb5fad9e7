#ifndef QAL_CORE_EXPORT_H_
#define QAL_CORE_EXPORT_H_

#if __cplusplus < 201703L
#error "QAL_kinematics needs C++17 or later: compile with -std=c++17"
#endif

/// Marks what the shared library exports; everything else is built hidden.
#define QAL_API __attribute__((visibility("default")))

#endif  // QAL_CORE_EXPORT_H_
