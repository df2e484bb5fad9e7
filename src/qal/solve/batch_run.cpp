#include "batch_run.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <system_error>
#include <thread>
#include <tuple>
#include <utility>

namespace qal {

namespace {

class BatchRun {
 public:
  BatchRun(size_t count, size_t threads, const std::function<void(size_t, size_t)>& work)
      : count_(count), threads_(threads), work_(work) {}

  // Takes chunk after chunk. Throws nothing: what is thrown in a helper's thread would end the
  // process.
  // @param progress of the calling thread
  void Work(const std::function<bool(size_t)>& progress) {
    try {
      for (size_t begin = 0, end = 0; !stopped_.load(std::memory_order_relaxed);) {
        if (begin == end) std::tie(begin, end) = TakeChunks();
        if (begin == end) return;
        const size_t next = std::min(end, begin + kBatchChunk);
        work_(begin, next);
        const size_t done = done_.fetch_add(next - begin, std::memory_order_relaxed) + next - begin;
        begin = next;
        if (progress && !progress(done)) stopped_.store(true, std::memory_order_relaxed);
      }
    } catch (...) {
      stopped_.store(true, std::memory_order_relaxed);
      if (!failed_.test_and_set()) thrown_ = std::current_exception();
    }
  }

  // When all threads have ended.
  size_t Done() const {
    if (thrown_) std::rethrow_exception(thrown_);
    return done_.load(std::memory_order_relaxed);
  }

 private:
  // Chunks one after the other: where threads take turns, each waits for memory that the processor
  // has given the other beforehand. Towards the end they are fewer, so that all threads end
  // together.
  std::pair<size_t, size_t> TakeChunks() {
    constexpr size_t kMostChunks = 64;
    constexpr size_t kTurns = 4;  // of each thread, for what is left
    for (size_t begin = next_.load(std::memory_order_relaxed);;) {
      const size_t chunks = (count_ - begin) / kBatchChunk / (kTurns * threads_);
      const size_t end =
          std::min(count_, begin + std::clamp<size_t>(chunks, 1, kMostChunks) * kBatchChunk);
      if (next_.compare_exchange_weak(begin, end, std::memory_order_relaxed)) return {begin, end};
    }
  }

  size_t count_;
  size_t threads_;
  const std::function<void(size_t, size_t)>& work_;
  std::atomic<size_t> next_{0};
  std::atomic<size_t> done_{0};
  std::atomic<bool> stopped_{false};
  std::atomic_flag failed_ = ATOMIC_FLAG_INIT;
  std::exception_ptr thrown_;
};

size_t ThreadsFor(size_t count, unsigned wanted) {
  const size_t most = wanted > 0 ? wanted : std::max(1U, std::thread::hardware_concurrency());
  return std::min(most, (count + kBatchChunk - 1) / kBatchChunk);
}

// Threads that work with the calling one; fewer where the system gives no more.
class Helpers {
 public:
  Helpers(BatchRun& run, size_t count) {
    threads_.reserve(count);
    try {
      for (size_t i = 0; i < count; ++i) threads_.emplace_back([&run] { run.Work({}); });
    } catch (const std::system_error&) {  // those that run do it all
    }
  }
  Helpers(const Helpers&) = delete;
  Helpers& operator=(const Helpers&) = delete;
  ~Helpers() {
    for (std::thread& thread : threads_) thread.join();
  }

 private:
  std::vector<std::thread> threads_;
};

}  // namespace

size_t RunBatch(size_t count, const BatchOptions& options,
                const std::function<void(size_t begin, size_t end)>& work) {
  const size_t threads = std::max<size_t>(1, ThreadsFor(count, options.threads));
  BatchRun run(count, threads, work);
  if (threads > 1) {
    const Helpers helpers(run, threads - 1);
    run.Work(options.progress);
  } else {
    run.Work(options.progress);
  }
  return run.Done();
}

}  // namespace qal
