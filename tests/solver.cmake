add_executable(qal_solver_test solver/reference_solver_test.cpp)
target_include_directories(qal_solver_test PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(qal_solver_test PRIVATE qal_build_options ik GTest::gtest_main)
gtest_discover_tests(qal_solver_test)
