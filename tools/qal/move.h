#ifndef QAL_TOOLS_QAL_MOVE_H_
#define QAL_TOOLS_QAL_MOVE_H_

#include <CLI/App.hpp>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "../../src/core/roadpoint.h"
#include "arguments.h"
#include "output.h"

namespace qal::tools {

constexpr int kMostSetting = 1000000000;  // of a speed and the like: far beyond any use

/// Start and end of a move.
struct Move {
  RoadPoint start;
  RoadPoint end;
  bool end_is_pose;  // given as a pose: its joints are the start's until they are solved

  /// Distance of the two positions [m].
  double Length() const;
};

/// The options that give a move's ends.
class Ends {
 public:
  /// Adds --from, --to, --to-pose, --rpy and --by.
  void AddTo(CLI::App& command);
  Move Read(const Units& units) const;

 private:
  Numbers from_;
  Numbers to_;
  Numbers to_pose_;
  Numbers rpy_;
  Numbers by_;
};

/// @throw UsageError when one of `all` is given and none of `taken`
void RefuseOthers(const std::string& profile, std::initializer_list<const Numbers*> all,
                  std::initializer_list<const Numbers*> taken);

/// Solves the end of a move, where it is a pose, for the joints nearest the start's.
/// @throw Failure when it has no solution
void SolveEnd(Move& move, const Units& units);

/// Reads the ends, plans, and writes the plan: a summary that a person can check, or JSON with
/// every point; a CSV file besides.
/// @param plan may complete the move; what it says on standard output goes to standard error
void RunMove(const Ends& ends, const Units& units, const Output& output,
             const std::function<std::vector<RoadPoint>(Move&)>& plan);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_MOVE_H_
