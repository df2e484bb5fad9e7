#ifndef QAL_TOOLS_QAL_PROGRAM_WAY_H_
#define QAL_TOOLS_QAL_PROGRAM_WAY_H_

#include <qal/plan/program.h>

#include <vector>

namespace qal::tools {

/// Places on the tool's way as a program asks for it, whether or not there is a motion: the ends of
/// lines, and places on joint moves and arcs between theirs. A pose that no joints have, or that
/// the way there decides on, is taken as by joints near those before.
std::vector<Vec3> WayOf(const Arm& arm, const Program& program);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_PROGRAM_WAY_H_
