#ifndef QAL_IO_EXPLANATION_JSON_H_
#define QAL_IO_EXPLANATION_JSON_H_

#include "explanation_text.h"
#include "json.h"

namespace qal::io {

/// An explanation for programs and for a report's page, in radians and metres; docs/explain.md has
/// the keys.
Json ExplanationJson(const ExplainedRequest& request);

}  // namespace qal::io

#endif  // QAL_IO_EXPLANATION_JSON_H_
