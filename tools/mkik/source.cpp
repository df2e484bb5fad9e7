#include "source.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <vector>

#include "../../io/messages.h"
#include "../../io/numbers.h"
#include "solver_texts.h"

namespace qal::tools {

using namespace io;
using namespace closed_form;

namespace {

std::string Text(double value) { return FormatNumber(value); }

std::string Text(const double (&values)[6]) {
  std::string text;
  for (const double value : values) text += (text.empty() ? "" : ", ") + Text(value);
  return "{" + text + "}";
}

std::string Text(const Vector<double>& v) {
  return fmt::format("{{{{{}, {}, {}}}}}", Text(v[0]), Text(v[1]), Text(v[2]));
}

std::string Text(const Matrix<double>& m) {
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

// An arm's type, and the files that solve it.
struct SolvingCode {
  std::string type;
  std::vector<const char*> files;
};

SolvingCode CodeOf(const SphericalWristArm& /*arm*/) {
  return {"SphericalWristArm", {"spherical_wrist.h"}};
}
SolvingCode CodeOf(const ParallelAxesArm& /*arm*/) {
  return {"ParallelAxesArm", {"parallel_axes.h"}};
}
SolvingCode CodeOf(const OffsetWristArm& /*arm*/) { return {"OffsetWristArm", {"offset_wrist.h"}}; }
SolvingCode CodeOf(const GeneralArm& /*arm*/) { return {"GeneralArm", {"general.h"}}; }
template <class Member>
SolvingCode CodeOf(const PolishedArm<Member>& arm) {
  const auto [type, files] = CodeOf(arm.member);
  return {fmt::format("PolishedArm<qal::closed_form::{}>", type), {"polished.h", files[0]}};
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

std::string Text(const Complex<double>& number) {
  return fmt::format("{{{}, {}}}", Text(number.re), Text(number.im));
}

std::string Text(const ComplexJoints& joints) {
  std::string text;
  for (const SinCos<Complex<double>>& angle : joints.joint) {
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

// A file of the solving code, with others in place of its includes of them, unless they stand
// before it. NOLINTNEXTLINE(misc-no-recursion): as deep as the files include each other
std::string Inlined(const std::string& name, std::set<std::string>& before) {
  if (!before.insert(name).second) return "";
  const std::string include = "#include \"";
  std::istringstream lines(SolverText(name));
  std::string result = "\n";
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(include, 0) != 0) {
      result += line + '\n';
      continue;
    }
    const std::filesystem::path named =
        line.substr(include.size(), line.rfind('"') - include.size());
    result += Inlined(named.filename().string(), before);
  }
  return result;
}

// Compilers round a product and its sum once where the processor can, unless told not to; g++ 12
// even then where it finds sums and differences side by side, as its superword-level vectorizer
// does.
constexpr char kSameBits[] = R"(
// The same bits on every processor: no product and sum are rounded as one. Only clang, where it is
// told -ffp-contract=fast, does so nevertheless.
#if defined(__FAST_MATH__) || __FLT_EVAL_METHOD__ == 2
#error "needs IEEE arithmetic in double precision: compile without -ffast-math, -Ofast and x87"
#endif
#ifdef __clang__
#pragma STDC FP_CONTRACT OFF
#else
#pragma GCC optimize("fp-contract=off", "no-tree-slp-vectorize")
#endif
)";

// Names come from anywhere: they must not end the comment.
std::string InComment(const std::string& name) {
  std::string text = NameText(name);
  std::replace(text.begin(), text.end(), '\\', '?');
  return text;
}

std::string Heading(const ArmDescription& arm, const FittedModel& fitted) {
  std::string text = fmt::format(
      "// Solver of the arm '{}', from '{}' to '{}': {}.\n"
      "// Written by mkik; change the arm's description and run it again. To build it elsewhere,\n"
      "// with an exports.map as this file's last lines have it:\n"
      "//   c++ -std=c++17 -O3 -fno-math-errno -fvisibility=hidden -fPIC -shared\n"
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

std::string SolverExports() { return SolverText("exports.map"); }

std::string SolverSource(const ArmDescription& arm, const FittedModel& fitted) {
  std::string source = Heading(arm, fitted) + kSameBits;
  std::set<std::string> there;
  source += Inlined("ikfast.h", there);
  std::string constant;
  std::visit(
      [&](const auto& a) {
        const auto [type, files] = CodeOf(a);
        for (const char* file : files) source += Inlined(file, there);
        constant = fmt::format("constexpr qal::closed_form::{} kArm = {};\n", type, Text(a));
      },
      fitted.model);
  source += fmt::format(
      "\nnamespace {{\n\n{}\nconstexpr char kGeometryHash[] = \"{}\";\n\n"
      "}}  // namespace\n",
      constant, HashOf(fitted.model));
  source += Inlined("entry_points.inc", there);
  // The map's own comment would end this one.
  const std::string exports = SolverExports();
  return source + "\n/* exports.map:\n" + exports.substr(exports.find('{')) + "*/\n";
}

}  // namespace qal::tools
