#include "source.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <sstream>

#include "../../io/numbers.h"
#include "solver_texts.h"

namespace qal::tools {

using namespace io;

namespace {

using closed_form::Body;
using closed_form::ParallelAxesArm;
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

std::string Text(const Body& body) {
  return fmt::format(
      "    {{/*base*/ {{{},\n"
      "               {}}},\n"
      "     /*shoulder*/ {},\n"
      "     /*lateral*/ {},\n"
      "     /*upper_arm*/ {},\n"
      "     /*forearm*/ {},\n"
      "     /*tool*/ {},\n"
      "     /*centre_in_tool*/ {},\n"
      "     /*direction*/ {},\n"
      "     /*zero*/ {}}},\n",
      Text(body.base.rotation), Text(body.base.position), Text(body.shoulder), Text(body.lateral),
      Text(body.upper_arm), Text(body.forearm), Text(body.tool), Text(body.centre_in_tool),
      Text(body.direction), Text(body.zero));
}

std::string Constant(const SphericalWristArm& arm) {
  return fmt::format(
      "constexpr qal::closed_form::SphericalWristArm kArm = {{\n{}"
      "    /*lean*/ {},\n"
      "    /*skew*/ {}}};\n",
      Text(arm.body), Text(arm.lean), Text(arm.skew));
}

std::string Constant(const ParallelAxesArm& arm) {
  return fmt::format(
      "constexpr qal::closed_form::ParallelAxesArm kArm = {{\n{}"
      "    /*wrist_offset_x*/ {},\n"
      "    /*wrist_offset_z*/ {}}};\n",
      Text(arm.body), Text(arm.wrist_offset_x), Text(arm.wrist_offset_z));
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

std::string Heading(const ArmDescription& arm, const Model& model) {
  std::string text = fmt::format(
      "// Closed-form solver of the arm '{}', from '{}' to '{}': {}.\n"
      "// Written by mkik; change the arm's description and run it again. To build it elsewhere,\n"
      "// with an exports.map as this file's last lines have it:\n"
      "//   c++ -std=c++17 -O3 -ffp-contract=off -fno-math-errno -fvisibility=hidden -fPIC "
      "-shared\n"
      "//     -Wl,--version-script=exports.map -Wl,-soname,libik.so -o libik.so this_file.cpp\n"
      "//\n"
      "// Joints as described [rad]. The solver doesn't look at limits: it lists every solution "
      "in\n"
      "// (-pi, pi], and who calls it chooses.\n",
      InComment(arm.name), InComment(arm.base), InComment(arm.tip), FamilyName(model));
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

std::string SolverSource(const ArmDescription& arm, const Model& model) {
  const bool spherical = std::holds_alternative<SphericalWristArm>(model);
  const std::string constant = std::visit([](const auto& a) { return Constant(a); }, model);
  std::string source = Heading(arm, model);
  for (const char* text :
       {kIkfastText, kAnglesText, kGeometryText, kBodyText, kShoulderText, kSolutionsText,
        kSolveText, kElbowText, kWristText, spherical ? kSphericalWristText : kParallelAxesText}) {
    source += '\n' + Inlined(text);
  }
  source += fmt::format(
      "\nnamespace {{\n\n{}\nconstexpr char kGeometryHash[] = \"{}\";\n\n"
      "}}  // namespace\n\n{}\n/* exports.map:\n{}*/\n",
      constant, HashOf(model), Inlined(kEntryPointsText),
      // The map's own comment would end this one.
      SolverExports().substr(SolverExports().find('{')));
  return source;
}

}  // namespace qal::tools
