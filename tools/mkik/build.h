#ifndef QAL_TOOLS_MKIK_BUILD_H_
#define QAL_TOOLS_MKIK_BUILD_H_

#include <string>
#include <vector>

#include "../../src/qal/model/solver.h"

namespace qal::tools {

/// The compiler's program, and arguments that go before all others: $CXX, or c++.
std::vector<std::string> CompilerCommand();

/// Compiles a solver's source into a shared library, and checks in a process of its own that this
/// answers as it should. The library then appears whole or not at all; a stop (Ctrl-C) while that
/// goes on leaves nothing.
/// @param solver what the library has to answer as
/// @throw Failure when there is no compiler, it fails, or what it makes is no such solver;
///        UsageError when `path`, or a folder to compile in, can't be written
void BuildLibrary(const std::string& source, const std::string& exports, const Solver& solver,
                  const std::string& path);

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_BUILD_H_
