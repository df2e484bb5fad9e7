#ifndef QAL_TOOLS_QAL_ARGUMENTS_H_
#define QAL_TOOLS_QAL_ARGUMENTS_H_

#include <CLI/App.hpp>
#include <array>
#include <string>
#include <vector>

#include "../../src/core/roadpoint.h"

namespace qal::tools {

/// Units of the numbers on the command line and in tables. Files and JSON keep radians and metres.
class Units {
 public:
  /// Adds --deg and --mm.
  void AddTo(CLI::App& command);

  double Radians(double angle) const;
  double Metres(double length) const { return mm_ ? length / 1000.0 : length; }
  double Angle(double radians) const;
  double Length(double metres) const { return mm_ ? metres * 1000.0 : metres; }
  const char* angle() const { return deg_ ? "deg" : "rad"; }
  const char* length() const { return mm_ ? "mm" : "m"; }
  bool deg() const { return deg_; }
  bool mm() const { return mm_; }

 private:
  bool deg_ = false;
  bool mm_ = false;
};

/// An option that takes numbers: `--joints 0 0.3 -0.2 0 0.5 0`, commas welcome.
class Numbers {
 public:
  /// @param shape what the help shows for the numbers, such as "X Y Z"
  void AddTo(CLI::App& command, const std::string& name, const std::string& shape,
             const std::string& help);

  bool given() const { return !texts_.empty(); }
  const std::string& name() const { return name_; }
  /// How many there are.
  size_t size() const { return Split().size(); }
  /// @param expected what a wrong number of them is answered with, such as "6 numbers [rad]"
  /// @throw UsageError when there are not exactly `count`, or one is no finite number
  std::vector<double> Read(size_t count, const std::string& expected) const;
  /// A single number from `least` to `most`.
  double ReadWithin(double least, double most) const;
  /// A single whole number from `least` to `most`.
  int ReadWhole(int least, int most) const;

 private:
  std::vector<std::string> Split() const;
  std::vector<std::string> SplitExactly(size_t count, const std::string& expected) const;

  std::string name_;
  std::vector<std::string> texts_;
};

using Joints = std::array<double, 6>;

/// Six joints [rad], each of any size.
Joints ReadJoints(const Numbers& joints, const Units& units);

/// Six joints [rad] that the arm can stand at.
Joints ReadArmJoints(const Numbers& joints, const Units& units);

/// A pose: seven numbers x y z qw qx qy qz, or x y z with roll pitch yaw in `rpy`. The quaternion
/// is normalised, with a note on standard error when that changes it by more than 1e-6.
/// @param kept the orientation that x y z alone stand for; null: they need `rpy`
RoadPoint ReadPose(const Numbers& pose, const Numbers& rpy, const Units& units,
                   const Ori* kept = nullptr);

/// Help texts that every command shares.
constexpr const char* kJointsShape = "Q1 .. Q6";
constexpr const char* kJointsHelp = "six joint angles [rad; --deg: deg]";
constexpr const char* kPoseShape = "X Y Z QW QX QY QZ";
extern const char* const kPoseHelp;
constexpr const char* kRpyShape = "R P Y";
extern const char* const kRpyHelp;

/// Lets a negative number that starts with no digit ("-.5", "-inf") pass as a value, not an option.
std::string ShieldNumber(const std::string& argument);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_ARGUMENTS_H_
