qal_require(nlohmann_json nlohmann-json3-dev)

add_executable(qal_trajectory_files_test tool/trajectory_files_test.cpp)
target_link_libraries(qal_trajectory_files_test PRIVATE qal_tool GTest::gtest_main)
gtest_discover_tests(qal_trajectory_files_test)
add_executable(qal_measure_test tool/measure_test.cpp)
target_link_libraries(qal_measure_test PRIVATE qal_tool GTest::gtest_main)
gtest_discover_tests(qal_measure_test)

# The tool as a process, also with a solver that misbehaves in place of the reference arm's.
add_executable(qal_command_test tool/usage_test.cpp tool/kinematics_commands_test.cpp
                                tool/move_commands_test.cpp tool/file_commands_test.cpp)
target_compile_definitions(
  qal_command_test PRIVATE QAL_BINARY="$<TARGET_FILE:qal>"
                           QAL_FOREIGN_SOLVER_DIR="${foreign}/g_O0")
target_link_libraries(qal_command_test PRIVATE qal_build_options nlohmann_json::nlohmann_json
                                               GTest::gtest_main)
add_dependencies(qal_command_test qal qal_foreign_g_O0)
gtest_discover_tests(qal_command_test)

# Sanitizers need more memory than the limits here leave.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_test(NAME Tool.Faults COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/tool/faults.sh $<TARGET_FILE:qal>
                                    $<TARGET_FILE:mkik>)
endif()
