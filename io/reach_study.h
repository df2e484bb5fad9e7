#ifndef QAL_IO_REACH_STUDY_H_
#define QAL_IO_REACH_STUDY_H_

#include <qal/study/reach.h>

#include <functional>

#include "json.h"
#include "loaded_arm.h"

namespace qal::io {

/// A reach study's own description: its kind, "reach" or "placement"; the arm with its limits and
/// tool, and its axes, by which it can be drawn; the box, what is tried in each cell. Of a
/// placement's poses it has their number and a hash. Two studies of the same description have the
/// same cells.
Json ReachStudyJson(const LoadedArm& loaded, const ReachStudy& study);

/// Gives a placement's poses, so many of them.
using ReachPoses = std::function<std::vector<Pose>(size_t count)>;

/// The study of a description, sound.
/// @param poses is asked where it is a placement's
/// @throw UsageError when it is none
ReachStudy ReadReachStudy(const std::string& description, const ReachPoses& poses);

}  // namespace qal::io

#endif  // QAL_IO_REACH_STUDY_H_
