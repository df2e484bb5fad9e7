# The library against a solver that the test executable itself supplies.
add_executable(
  qal_library_test
  core/value_types_test.cpp
  kinematics/ikfast_test.cpp
  kinematics/pose/euler_test.cpp
  kinematics/pose/frame_moves_test.cpp
  kinematics/pose/scalars_test.cpp
  kinematics/solve/forward_test.cpp
  kinematics/solve/inverse_test.cpp
  kinematics/solve/solution_list_test.cpp
  kinematics/trajectory/fixed_line_test.cpp
  kinematics/trajectory/joint_interpolation_test.cpp
  kinematics/trajectory/joint_trapezoid_test.cpp
  kinematics/trajectory/ramped_line_test.cpp
  kinematics/trajectory/s_curve_line_test.cpp
  support/scripted_solver.cpp)
target_include_directories(qal_library_test PRIVATE support)
# Tests call the private operations too.
target_compile_options(qal_library_test PRIVATE -fno-access-control)
target_link_libraries(qal_library_test PRIVATE qal_build_options QAL_kinematics GTest::gtest_main)
# Its ikfast functions take the place of libik.so's.
set_target_properties(qal_library_test PROPERTIES ENABLE_EXPORTS ON)
gtest_discover_tests(qal_library_test)
