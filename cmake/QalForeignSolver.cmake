# Takes a user's solver library instead of the reference arm's.

include(CheckCXXSourceCompiles)

# Checks that `library` has the two functions that this library calls, and puts a copy, named
# libik.so, where the loader finds it.
function(qal_use_foreign_solver library)
  if(NOT EXISTS ${library} OR IS_DIRECTORY ${library})
    message(FATAL_ERROR "QAL_IK_SOLVER: no such file: ${library}")
  endif()
  unset(QAL_IK_SOLVER_LINKS CACHE)
  set(CMAKE_REQUIRED_LIBRARIES ${library})
  set(CMAKE_REQUIRED_INCLUDES ${PROJECT_SOURCE_DIR}/src/kinematics)
  set(CMAKE_REQUIRED_QUIET ON)
  check_cxx_source_compiles(
    "#include <ikfast.h>
     int main() {
       double joints[6] = {}, eetrans[3], eerot[9];
       ikfast::IkSolutionList<double> solutions;
       ikfast::ComputeFk(joints, eetrans, eerot);
       return ikfast::ComputeIk(eetrans, eerot, nullptr, solutions);
     }"
    QAL_IK_SOLVER_LINKS)
  if(NOT QAL_IK_SOLVER_LINKS)
    message(FATAL_ERROR
            "QAL_IK_SOLVER: ${library} does not link. It has to be a shared library that exports "
            "ikfast::ComputeIk and ikfast::ComputeFk (a solver generated with the namespace "
            "'ikfast', not with plain C names).")
  endif()
  message(STATUS "Solver: ${library}")
  add_custom_command(
    OUTPUT ${PROJECT_BINARY_DIR}/lib/libik.so
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/lib
    COMMAND ${CMAKE_COMMAND} -E copy ${library} ${PROJECT_BINARY_DIR}/lib/libik.so
    DEPENDS ${library})
  add_custom_target(qal_foreign_solver ALL DEPENDS ${PROJECT_BINARY_DIR}/lib/libik.so)
endfunction()
