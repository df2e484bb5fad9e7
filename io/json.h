#ifndef QAL_IO_JSON_H_
#define QAL_IO_JSON_H_

#include <nlohmann/json.hpp>

namespace qal::io {

/// What is written: its keys stay in the order in which they were set.
using Json = nlohmann::ordered_json;

}  // namespace qal::io

#endif  // QAL_IO_JSON_H_
