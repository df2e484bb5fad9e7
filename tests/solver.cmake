qal_require(orocos_kdl liborocos-kdl-dev)
qal_require(tinyxml2 libtinyxml2-dev)

add_executable(qal_solver_test solver/reference_solver_test.cpp solver/urdf_chain.cpp)
target_include_directories(qal_solver_test SYSTEM PRIVATE ${orocos_kdl_INCLUDE_DIRS})
target_include_directories(qal_solver_test PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_compile_definitions(qal_solver_test PRIVATE QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms")
target_link_libraries(qal_solver_test PRIVATE qal_build_options ik ${orocos_kdl_LIBRARIES}
                                              tinyxml2::tinyxml2 GTest::gtest_main)
gtest_discover_tests(qal_solver_test)
