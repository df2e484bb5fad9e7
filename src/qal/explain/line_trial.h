#ifndef QAL_EXPLAIN_LINE_TRIAL_H_
#define QAL_EXPLAIN_LINE_TRIAL_H_

#include "explain.h"

// Internal: a line with changes, tried.
namespace qal {

struct LineRequest {
  Arm arm;
  State from;
  Pose to;
  double speed = 1;              ///< the part of the asked speed
  double orientation_error = 0;  ///< [rad]; of `PlanLine` alone
};

/// How a line is planned.
class LineTrial {
 public:
  virtual ~LineTrial() = default;
  /// Whether there is a plan, or nearly so: the quickest way to tell.
  virtual bool Follows(const LineRequest& request) const = 0;
  virtual LineAttempt Plan(const LineRequest& request) const = 0;

  /// The tool is slowed down where a joint would be too fast: a lower speed changes nothing.
  virtual bool slows_down() const = 0;
};

/// By `PlanLine`.
class LimitedTrial final : public LineTrial {
 public:
  explicit LimitedTrial(const LineLimits& limits) : limits_(limits) {}
  bool Follows(const LineRequest& request) const override;
  LineAttempt Plan(const LineRequest& request) const override;
  bool slows_down() const override { return true; }

 private:
  LineLimits Limits(const LineRequest& request) const;
  LineLimits limits_;
};

/// In another way.
class PlannerTrial final : public LineTrial {
 public:
  explicit PlannerTrial(const LinePlanner& planner) : planner_(planner) {}
  bool Follows(const LineRequest& request) const override { return !Plan(request).failure; }
  LineAttempt Plan(const LineRequest& request) const override {
    return planner_(request.arm, request.from, request.to, request.speed);
  }
  bool slows_down() const override { return false; }

 private:
  const LinePlanner& planner_;
};

}  // namespace qal

#endif  // QAL_EXPLAIN_LINE_TRIAL_H_
