# The library against a solver that the test executable itself supplies.
qal_test_program(
  qal_library_test
  SOURCES
  core/value_types_test.cpp
  kinematics/solver_interface_test.cpp
  kinematics/pose/pose_test.cpp
  kinematics/solve/forward_test.cpp
  kinematics/solve/inverse_test.cpp
  kinematics/trajectory/fixed_line_test.cpp
  kinematics/trajectory/joint_interpolation_test.cpp
  kinematics/trajectory/joint_trapezoid_test.cpp
  kinematics/trajectory/ramped_line_test.cpp
  kinematics/trajectory/s_curve_line_test.cpp
  support/scripted_solver.cpp
  LIBRARIES QAL_kinematics)
# Tests call the private operations too.
target_compile_options(qal_library_test PRIVATE -fno-access-control)
# Its ikfast functions take the place of libik.so's.
set_target_properties(qal_library_test PROPERTIES ENABLE_EXPORTS ON)
