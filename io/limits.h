#ifndef QAL_IO_LIMITS_H_
#define QAL_IO_LIMITS_H_

#include <cstddef>
#include <functional>
#include <string_view>

namespace qal::io {

// What a file may be at most. Within these a reader takes time and memory in proportion to the
// file; what is beyond is refused before it is kept.
constexpr size_t kLargestDescription = size_t{64} << 20;  ///< [bytes] arm file, URDF or table
constexpr size_t kLargestTrajectory = size_t{1} << 30;    ///< [bytes]; an hour with rates is half
constexpr size_t kLargestMesh = size_t{64} << 20;         ///< [bytes]
constexpr size_t kMostTriangles = 500000;                 ///< of an arm's meshes together
constexpr size_t kLargestLibrary = size_t{512} << 20;     ///< [bytes]
constexpr size_t kDeepest = 64;        ///< lists, tables and elements within each other
constexpr size_t kMostColumns = 1000;  ///< of a CSV file
/// Of a description: entries of tables and lists, tags and attributes. Also the keys of an object.
constexpr size_t kMostValues = 1000000;
constexpr size_t kMostSteps = 100000;  ///< of a program, repetitions counted; places of a grid
/// Of a trajectory's times, joints and positions [s, rad, m]. There they are held to 1e-4; far
/// above it differences overflow, and no rate is true.
constexpr double kLargestNumber = 1e12;

/// @throw UsageError when lists, tables or elements are more than kDeepest within each other
void ExpectDepth(size_t depth);

/// @throw UsageError when there are more than kMostValues
void ExpectCount(size_t values);

/// @throw UsageError "line N: ..." when there is a NUL byte: text has none, and it would cut names
void ExpectText(std::string_view text);

/// Takes a text part by part.
/// @param step  takes what begins at a place; the place behind it
/// @throw UsageError "line N: ..." where `step` has thrown one, or at a NUL byte
void LookThrough(std::string_view text, const std::function<size_t(size_t)>& step);

/// The line of a place in a text, counted from 1.
size_t LineAt(std::string_view text, size_t place);

}  // namespace qal::io

#endif  // QAL_IO_LIMITS_H_
