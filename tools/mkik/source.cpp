#include "source.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <sstream>
#include <vector>

#include "../../io/numbers.h"
#include "solver_texts.h"

namespace qal::tools {

using namespace io;

namespace {

using closed_form::Body;
using closed_form::Chain;
using closed_form::Frame;
using closed_form::GeneralArm;
using closed_form::Link;
using closed_form::OffsetWristArm;
using closed_form::ParallelAxesArm;
using closed_form::PolishedArm;
using closed_form::SinCos;
using closed_form::SphericalWristArm;

std::string Text(double value) { return FormatNumber(value); }

std::string Text(const double (&values)[6]) {
  std::string text;
  for (const double value : values) text += (text.empty() ? "" : ", ") + Text(value);
  return "{" + text + "}";
}

std::string Text(const closed_form::Vector<double>& v) {
  return fmt::format("{{{{{}, {}, {}}}}}", Text(v[0]), Text(v[1]), Text(v[2]));
}

std::string Text(const closed_form::Matrix<double>& m) {
  return fmt::format("{{{{{}, {}, {}}}}}", Text(m[0]), Text(m[1]), Text(m[2]));
}

std::string Text(const SinCos<double>& angle) {
  return fmt::format("{{{}, {}}}", Text(angle.sine), Text(angle.cosine));
}

std::string Text(const Frame& frame) {
  return fmt::format("{{{},\n               {}}}", Text(frame.rotation), Text(frame.position));
}

std::string Text(const Body& body) {
  return fmt::format(
      "    {{/*base*/ {},\n"
      "     /*shoulder*/ {},\n"
      "     /*lateral*/ {},\n"
      "     /*upper_arm*/ {},\n"
      "     /*forearm*/ {},\n"
      "     /*tool*/ {},\n"
      "     /*centre_in_tool*/ {},\n"
      "     /*direction*/ {},\n"
      "     /*zero*/ {},\n"
      "     /*slack*/ {}}},\n",
      Text(body.base), Text(body.shoulder), Text(body.lateral), Text(body.upper_arm),
      Text(body.forearm), Text(body.tool), Text(body.centre_in_tool), Text(body.direction),
      Text(body.zero), Text(body.slack));
}

std::string Text(const Chain& chain) {
  std::string links;
  for (const Link& link : chain.links) {
    links += fmt::format("{}{{{}, {}, {}}}", links.empty() ? "{" : ",\n               ",
                         Text(link.zero), Text(link.twist), Text(link.offset));
  }
  return fmt::format(
      "    {{/*base*/ {},\n"
      "     /*links*/ {}}},\n"
      "     /*tool*/ {}}},\n",
      Text(chain.base), links, Text(chain.tool));
}

const char* TypeOf(const SphericalWristArm& /*arm*/) { return "SphericalWristArm"; }
const char* TypeOf(const ParallelAxesArm& /*arm*/) { return "ParallelAxesArm"; }
const char* TypeOf(const OffsetWristArm& /*arm*/) { return "OffsetWristArm"; }
const char* TypeOf(const GeneralArm& /*arm*/) { return "GeneralArm"; }
template <class Member>
std::string TypeOf(const PolishedArm<Member>& arm) {
  return fmt::format("PolishedArm<qal::closed_form::{}>", TypeOf(arm.member));
}

std::string Text(const SphericalWristArm& arm) {
  return fmt::format(
      "{{\n{}"
      "    /*lean*/ {},\n"
      "    /*skew*/ {}}}",
      Text(arm.body), Text(arm.lean), Text(arm.skew));
}

std::string Text(const ParallelAxesArm& arm) {
  return fmt::format(
      "{{\n{}"
      "    /*wrist_offset_x*/ {},\n"
      "    /*wrist_offset_z*/ {}}}",
      Text(arm.body), Text(arm.wrist_offset_x), Text(arm.wrist_offset_z));
}

std::string Text(const OffsetWristArm& arm) {
  return fmt::format(
      "{{\n{}"
      "    /*lean*/ {},\n"
      "    /*wrist_offset_y*/ {},\n"
      "    /*wrist_offset_z*/ {}}}",
      Text(arm.body), Text(arm.lean), Text(arm.wrist_offset_y), Text(arm.wrist_offset_z));
}

std::string Text(const closed_form::Complex<double>& number) {
  return fmt::format("{{{}, {}}}", Text(number.re), Text(number.im));
}

std::string Text(const closed_form::ComplexJoints& joints) {
  std::string text;
  for (const SinCos<closed_form::Complex<double>>& angle : joints.joint) {
    text +=
        fmt::format("{}{{{}, {}}}", text.empty() ? "" : ", ", Text(angle.sine), Text(angle.cosine));
  }
  return fmt::format("{{{{{}}}}}", text);
}

std::string Text(const GeneralArm& arm) {
  const auto& [pose, count, solutions] = arm.start;
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += (i == 0 ? "" : ",\n       ") + Text(solutions[i]);
  }
  const double(&q)[4] = pose.quaternion;
  return fmt::format(
      "{{\n{}"
      "    /*start*/ {{{{{{{}, {}, {}, {}}}, {}}},\n"
      "      {},\n"
      "      {{{}}}}}}}",
      Text(arm.chain), Text(q[0]), Text(q[1]), Text(q[2]), Text(q[3]), Text(pose.position), count,
      text);
}

template <class Member>
std::string Text(const PolishedArm<Member>& arm) {
  return fmt::format(
      "{{\n    /*member*/ {},\n{}"
      "    /*apart_m*/ {},\n"
      "    /*apart*/ {}}}",
      Text(arm.member), Text(arm.chain), Text(arm.apart_m), Text(arm.apart));
}

// The solving code of an arm's type, in the order of the files' includes.
std::vector<const char*> SolvingTexts(const SphericalWristArm& /*arm*/) {
  return {kElbowText, kWristText, kSphericalWristText};
}
std::vector<const char*> SolvingTexts(const ParallelAxesArm& /*arm*/) {
  return {kElbowText, kWristText, kParallelAxesText};
}
std::vector<const char*> SolvingTexts(const OffsetWristArm& /*arm*/) {
  return {kOffsetWristArmText, kOffsetWristWaysText, kOffsetWristNodesText, kOffsetWristSearchText,
          kOffsetWristText};
}
std::vector<const char*> SolvingTexts(const GeneralArm& /*arm*/) {
  return {kChainText,    kNewtonText,      kComplexLanesText, kPosePathText,
          kPathStepText, kPathTrackerText, kGeneralText};
}
template <class Member>
std::vector<const char*> SolvingTexts(const PolishedArm<Member>& arm) {
  std::vector<const char*> texts = {kChainText, kNewtonText, kPolishedText};
  for (const char* text : SolvingTexts(arm.member)) texts.push_back(text);
  return texts;
}

// A file that is part of another one: without includes of the files that stand before it.
std::string Inlined(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("#include \"", 0) != 0) result += line + '\n';
  }
  return result;
}

// Names come from anywhere: they must not end the comment.
std::string InComment(const std::string& name) {
  std::string text;
  for (const char c : name) text += c < ' ' || c == '\\' ? '?' : c;
  return text;
}

std::string Heading(const ArmDescription& arm, const FittedModel& fitted) {
  std::string text = fmt::format(
      "// Solver of the arm '{}', from '{}' to '{}': {}.\n"
      "// Written by mkik; change the arm's description and run it again. To build it elsewhere,\n"
      "// with an exports.map as this file's last lines have it:\n"
      "//   c++ -std=c++17 -O3 -ffp-contract=off -fno-math-errno -fvisibility=hidden -fPIC "
      "-shared\n"
      "//     -Wl,--version-script=exports.map -Wl,-soname,libik.so -o libik.so this_file.cpp\n"
      "//\n"
      "// Joints as described [rad]. The solver doesn't look at limits: it lists every solution "
      "in\n"
      "// (-pi, pi], and who calls it chooses.\n",
      InComment(arm.name), InComment(arm.base), InComment(arm.tip), FamilyName(fitted.family));
  for (size_t j = 0; j < arm.joints.size(); ++j) {
    const JointDescription& joint = arm.joints[j];
    text +=
        fmt::format("//   {} '{}': {}\n", j + 1, InComment(joint.name),
                    joint.lower_rad && joint.upper_rad
                        ? fmt::format("{} to {}", Text(*joint.lower_rad), Text(*joint.upper_rad))
                        : "no limits");
  }
  return text;
}

}  // namespace

std::string SolverExports() { return kExportsText; }

std::string SolverSource(const ArmDescription& arm, const FittedModel& fitted) {
  std::string source = Heading(arm, fitted);
  std::vector<const char*> texts = {kIkfastText,   kAnglesText,    kGeometryText, kBodyText,
                                    kShoulderText, kSolutionsText, kSolveText};
  std::string constant;
  std::visit(
      [&](const auto& a) {
        for (const char* text : SolvingTexts(a)) texts.push_back(text);
        constant = fmt::format("constexpr qal::closed_form::{} kArm = {};\n", TypeOf(a), Text(a));
      },
      fitted.model);
  for (const char* text : texts) source += '\n' + Inlined(text);
  source += fmt::format(
      "\nnamespace {{\n\n{}\nconstexpr char kGeometryHash[] = \"{}\";\n\n"
      "}}  // namespace\n\n{}\n/* exports.map:\n{}*/\n",
      constant, HashOf(fitted.model), Inlined(kEntryPointsText),
      // The map's own comment would end this one.
      SolverExports().substr(SolverExports().find('{')));
  return source;
}

}  // namespace qal::tools
