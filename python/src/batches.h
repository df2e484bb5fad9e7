#ifndef QAL_PYTHON_BATCHES_H_
#define QAL_PYTHON_BATCHES_H_

#include <pybind11/pybind11.h>
#include <qal/solve/batch.h>

#include <chrono>
#include <functional>

// Batches that let other threads of the interpreter run, and stop on Ctrl-C.
namespace qal::python {

namespace py = pybind11;

/// Calls `work(options)` without the interpreter's lock. Now and then, with the lock, `progress` is
/// called with how many elements are done since its last call, as tqdm's `update` takes it, and
/// signals are looked at.
/// @param count the elements
/// @return what `work` does
/// @throw what `progress` or a signal's handler raises
template <class Work>
auto RunUnlocked(const py::object& progress, unsigned threads, size_t count, const Work& work) {
  using Clock = std::chrono::steady_clock;
  constexpr auto kBetween = std::chrono::milliseconds(50);
  auto next = Clock::now() + kBetween;
  size_t told = 0;
  bool raised = false;
  const auto tell = [&](size_t done) {
    if (!progress.is_none() && done > told) progress(done - told);
    told = done;
  };
  BatchOptions options;
  options.threads = threads;
  options.progress = [&](size_t done) {
    if (Clock::now() < next) return true;
    next = Clock::now() + kBetween;
    const py::gil_scoped_acquire locked;
    try {
      tell(done);
      if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    } catch (py::error_already_set& error) {
      error.restore();
      raised = true;
    }
    return !raised;
  };
  auto result = [&] {
    const py::gil_scoped_release unlocked;
    return work(options);
  }();
  if (raised) throw py::error_already_set();
  tell(count);
  return result;
}

}  // namespace qal::python

#endif  // QAL_PYTHON_BATCHES_H_
