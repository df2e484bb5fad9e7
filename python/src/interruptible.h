#ifndef QAL_PYTHON_INTERRUPTIBLE_H_
#define QAL_PYTHON_INTERRUPTIBLE_H_

#include <pybind11/pybind11.h>
#include <qal/model/arm.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

// Work that takes long: other threads of the interpreter run meanwhile, and Ctrl-C ends it.
namespace qal::python {

namespace py = pybind11;

/// What `work` gives, without the interpreter's lock.
template <class Work>
auto Unlocked(const Work& work) {
  const py::gil_scoped_release unlocked;
  return work();
}

/// Looks at signals now and then, for work without the interpreter's lock.
class SignalWatch {
 public:
  /// From any thread, as often as the work likes.
  /// @return false once a signal's handler has raised
  bool GoOn() {
    if (over_) return true;
    if (raised_) return false;
    if (std::this_thread::get_id() != owner_ || Clock::now() < next_) return true;
    next_ = Clock::now() + kBetween;
    const py::gil_scoped_acquire locked;
    raised_ = PyErr_CheckSignals() != 0;
    return !raised_;
  }

  /// The work is done; with the interpreter's lock.
  /// @throw what a handler has raised
  void End() {
    over_ = true;
    if (raised_) throw py::error_already_set();
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kBetween{50};
  std::thread::id owner_ = std::this_thread::get_id();
  Clock::time_point next_ = Clock::now() + kBetween;  // of the owner alone
  std::atomic<bool> raised_{false};
  std::atomic<bool> over_{false};  // motions keep their arm, and so this
};

/// Calls `work(arm)` without the interpreter's lock, with the same arm, but that its work ends soon
/// when a signal's handler raises.
/// @return what `work` does
/// @throw what the handler has raised
template <class Work>
auto Interruptible(const Arm& arm, const Work& work) {
  const auto watch = std::make_shared<SignalWatch>();
  auto result = [&] {
    const py::gil_scoped_release unlocked;
    return work(arm.Watched([watch] { return watch->GoOn(); }));
  }();
  watch->End();
  return result;
}

}  // namespace qal::python

#endif  // QAL_PYTHON_INTERRUPTIBLE_H_
