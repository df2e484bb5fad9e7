#ifndef QAL_MODEL_EXCEPTIONS_H_
#define QAL_MODEL_EXCEPTIONS_H_

#include <exception>

#include "error.h"

// Internal: what a solver throws becomes an error.
namespace qal {

/// What a watched solver throws when it is to give up.
struct Interrupted {};

/// Returns what `call` returns, or kSolverThrows or kInterrupted.
/// @param call returns a `Result` whose error is an `Error`, or begins with one
template <class Call>
auto CatchingSolver(Call call) -> decltype(call()) {
  using Failed = typename decltype(call())::error_type;
  try {
    return call();
  } catch (const Interrupted&) {
    return Failed{Error{Reason::kInterrupted}};
  } catch (const std::exception& error) {
    return Failed{Error{Reason::kSolverThrows, -1, 0, 0, error.what()}};
  } catch (...) {
    return Failed{Error{Reason::kSolverThrows, -1, 0, 0, "something that is no std::exception"}};
  }
}

}  // namespace qal

#endif  // QAL_MODEL_EXCEPTIONS_H_
