#ifndef QAL_SOLVE_BATCH_RUN_H_
#define QAL_SOLVE_BATCH_RUN_H_

#include "batch.h"

// Internal: elements worked off by several threads.
namespace qal {

/// Elements that one thread takes at a time: enough that taking them costs little even where one
/// takes 0.1 us, and few enough that a stop is soon even where one takes 10 ms.
constexpr size_t kBatchChunk = 32;

/// Works off chunks of elements, each by one thread.
/// @param work is called with the first element and the one after the last
/// @return how many are done
/// @throw what `work` or `progress` throws, the first of it, when all threads have ended
size_t RunBatch(size_t count, const BatchOptions& options,
                const std::function<void(size_t begin, size_t end)>& work);

}  // namespace qal

#endif  // QAL_SOLVE_BATCH_RUN_H_
