#ifndef QAL_IO_REACH_STUDY_H_
#define QAL_IO_REACH_STUDY_H_

#include <qal/study/reach.h>

#include "json.h"
#include "loaded_arm.h"

namespace qal::io {

/// A reach study's own description: the arm with its limits and tool, the box, the orientations.
/// Two studies of the same description have the same cells.
Json ReachStudyJson(const LoadedArm& loaded, const ReachStudy& study);

/// The study of a description, sound.
/// @throw UsageError when it is none
ReachStudy ReadReachStudy(const std::string& description);

}  // namespace qal::io

#endif  // QAL_IO_REACH_STUDY_H_
