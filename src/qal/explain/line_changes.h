#ifndef QAL_EXPLAIN_LINE_CHANGES_H_
#define QAL_EXPLAIN_LINE_CHANGES_H_

#include <vector>

#include "line_trial.h"

// Internal: what makes a line work.
namespace qal {

/// One change of each kind that helps, each planned. The smallest first.
/// @param along where the line fails, the part of its way
std::vector<Change> LineChanges(const LineTrial& trial, const LineRequest& asked, Cause cause,
                                double along);

}  // namespace qal

#endif  // QAL_EXPLAIN_LINE_CHANGES_H_
