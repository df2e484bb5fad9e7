#ifndef QAL_TOOLS_QAL_MOVE_H_
#define QAL_TOOLS_QAL_MOVE_H_

#include <qal/plan/classic.h>

#include <CLI/App.hpp>
#include <functional>
#include <initializer_list>
#include <string>

#include "number_option.h"
#include "output.h"
#include "report_option.h"

namespace qal::tools {

constexpr int kMostSetting = 1000000000;  // of a speed and the like: far beyond any use

/// The options that give a move's ends.
class EndOptions {
 public:
  /// Adds --from, --to, --to-pose, --rpy and --by.
  void AddTo(CLI::App& command);
  /// @throw UsageError for joints outside of the arm's range
  classic::Ends Read(const Units& units, const Arm& arm) const;
  /// The same with any joints, to tell what becomes of them.
  classic::Ends ReadAny(const Units& units, const Arm& arm) const;

 private:
  using JointsReader = std::function<Joints(const NumberOption& joints)>;
  classic::Ends Read(const Units& units, const Arm& arm, const JointsReader& read) const;

  NumberOption from_;
  NumberOption to_;
  NumberOption to_pose_;
  NumberOption rpy_;
  NumberOption by_;
};

/// What every command takes that plans.
struct PlanOptions {
  CommonOptions common;
  ReportOption report;
  bool strict = false;
  bool verbose = false;

  /// Adds the common options, --strict, --report and --verbose.
  void AddTo(CLI::App& command, const std::shared_ptr<ArmOption>& arm);
  /// Adds --strict and --report.
  void AddJudgingTo(CLI::App& command);
  /// Passes the operations' own lines on to standard error, with --verbose.
  classic::Listener Listener() const;
};

/// @throw UsageError when one of `all` is given and not one of `taken`
void RefuseOthers(const std::string& profile, std::initializer_list<const NumberOption*> all,
                  std::initializer_list<const NumberOption*> taken);

/// Judges a plan by its arm and writes it: a summary that a person can check, or JSON with every
/// point; a CSV file and a report besides.
/// @param answer  what the table has above the verdict
/// @param json    what JSON has beside the arm and the verdict
/// @param name    what the report calls the motion; empty: by the command
/// @param program what the report says about its steps
/// @throw Failure with --strict, when a limit of the arm is exceeded; all is written before
void WritePlan(const PlanOptions& options, const io::LoadedArm& loaded,
               const io::FileTrajectory& plan, const std::string& answer, const Json& json,
               const std::string& name = "", const io::ReportProgram& program = {});

/// How long the tool's way is [m].
/// @param plan with poses
double LengthOf(const io::FileTrajectory& plan);

/// Rows of a plan with poses: points, duration, length.
std::string SizeRows(const io::FileTrajectory& plan, double length_m, const Units& units);
/// Rows of its ends.
std::string EndRows(const io::FileTrajectory& plan, const Units& units);

/// Rows that a person can check: points, duration, length, both ends.
/// @param plan with poses
std::string Summary(const io::FileTrajectory& plan, const Arm& arm, const Units& units);

/// Plans between two ends by a classic operation.
using Planner =
    std::function<classic::Plan(const Arm&, const classic::Ends&, const classic::Listener&)>;

/// @throw Failure with --strict, when a limit of the arm is exceeded
void ExpectWithinLimits(const PlanOptions& options, const io::FileTrajectory& plan, const Arm& arm);

/// Reads the ends and plans by a classic operation.
/// @throw Failure when there is no plan: where, and why
io::FileTrajectory PlanClassic(const EndOptions& ends, const PlanOptions& options,
                               const Planner& planner, const Arm& arm);

/// Reads the ends, plans by a classic operation, judges and writes.
/// @throw Failure when there is no plan: where, and why
void RunClassic(const EndOptions& ends, const PlanOptions& options, const Planner& planner);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_MOVE_H_
