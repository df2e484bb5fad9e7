#ifndef QAL_TOOLS_QAL_IK_ARGUMENTS_H_
#define QAL_TOOLS_QAL_IK_ARGUMENTS_H_

#include <qal/solve/kinematics.h>

#include <string>

#include "commands.h"
#include "number_option.h"
#include "output.h"

namespace qal::tools {

/// What is asked for, beside the pose.
struct IkRequest {
  Joints near;
  InverseOptions options;
};

/// What `qal ik` takes.
struct IkArguments {
  NumberOption pose;
  NumberOption rpy;
  NumberOption near;
  NumberOption step_bound;
  std::string file;
  bool all = false;
  CommonOptions common;

  void AddTo(CLI::App& ik, const SharedArm& arm);
  /// Adds --near and --step-bound alone.
  void AddRequestTo(CLI::App& ik);
  /// @throw UsageError when options don't go with a file
  void Check() const;
  IkRequest ReadRequest() const;
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_IK_ARGUMENTS_H_
