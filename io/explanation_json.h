#ifndef QAL_IO_EXPLANATION_JSON_H_
#define QAL_IO_EXPLANATION_JSON_H_

#include <nlohmann/json.hpp>

#include "explanation_text.h"

namespace qal::io {

/// An explanation for programs and for a report's page, in radians and metres; docs/explain.md has
/// the keys.
nlohmann::ordered_json ExplanationJson(const ExplainedRequest& request);

}  // namespace qal::io

#endif  // QAL_IO_EXPLANATION_JSON_H_
