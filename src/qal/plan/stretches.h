#ifndef QAL_PLAN_STRETCHES_H_
#define QAL_PLAN_STRETCHES_H_

#include <algorithm>
#include <vector>

#include "binding.h"

namespace qal {

/// The stretches of a motion in which one limit binds, told in the order of time.
class Stretches {
 public:
  /// The limit binds from `begin_s` to `end_s`; one stretch with the one before where they meet.
  void Add(double begin_s, double end_s) {
    if (begin_s > last_end_s_) last_begin_s_ = begin_s;
    last_end_s_ = end_s;
    total_s_ += end_s - begin_s;
    if (last_end_s_ - last_begin_s_ > longest_.end_s - longest_.begin_s) {
      longest_.begin_s = last_begin_s_;
      longest_.end_s = last_end_s_;
    }
  }

  /// Appends them to `bindings` if there are any.
  void AppendTo(std::vector<Binding>& bindings, Limit limit, int joint, double duration_s) const {
    if (!(total_s_ > 0)) return;
    bindings.push_back(
        {limit, joint, std::min(1.0, total_s_ / duration_s), longest_.begin_s, longest_.end_s});
  }

 private:
  double last_begin_s_ = 0;
  double last_end_s_ = 0;
  double total_s_ = 0;
  Binding longest_ = {};
};

/// The largest share first.
inline void SortByShare(std::vector<Binding>& bindings) {
  std::stable_sort(bindings.begin(), bindings.end(),
                   [](const Binding& a, const Binding& b) { return a.share > b.share; });
}

}  // namespace qal

#endif  // QAL_PLAN_STRETCHES_H_
