#ifndef QAL_TOOLS_MKIK_SOLVER_TEXTS_H_
#define QAL_TOOLS_MKIK_SOLVER_TEXTS_H_

namespace qal::tools {

// The solving code as text: mkik writes it into the solvers that it makes.
extern const char kIkfastText[];
extern const char kAnglesText[];
extern const char kGeometryText[];
extern const char kBodyText[];
extern const char kShoulderText[];
extern const char kSolutionsText[];
extern const char kSolveText[];
extern const char kElbowText[];
extern const char kWristText[];
extern const char kSphericalWristText[];
extern const char kParallelAxesText[];
extern const char kOffsetWristArmText[];
extern const char kOffsetWristWaysText[];
extern const char kOffsetWristNodesText[];
extern const char kOffsetWristSearchText[];
extern const char kOffsetWristText[];
extern const char kChainText[];
extern const char kNewtonText[];
extern const char kPolishedText[];
extern const char kComplexLanesText[];
extern const char kPosePathText[];
extern const char kPathStepText[];
extern const char kPathTrackerText[];
extern const char kGeneralText[];
extern const char kEntryPointsText[];
extern const char kExportsText[];

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_SOLVER_TEXTS_H_
