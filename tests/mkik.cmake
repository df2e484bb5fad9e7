qal_require(orocos_kdl liborocos-kdl-dev)
qal_require(tinyxml2 libtinyxml2-dev)

add_executable(qal_mkik_test mkik/arms_test.cpp mkik/refusals_test.cpp mkik/mkik_test.cpp
                             solver/urdf_chain.cpp)
target_include_directories(qal_mkik_test SYSTEM PRIVATE ${orocos_kdl_INCLUDE_DIRS})
target_compile_definitions(qal_mkik_test PRIVATE QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms"
                                                 QAL_MKIK="$<TARGET_FILE:mkik>"
                                                 QAL_IKCHECK="$<TARGET_FILE:ikcheck>")
target_link_libraries(qal_mkik_test PRIVATE qal_mkik ${orocos_kdl_LIBRARIES} tinyxml2::tinyxml2
                                            GTest::gtest_main)
add_dependencies(qal_mkik_test mkik ikcheck)
gtest_discover_tests(qal_mkik_test)

# What docs/your-arm.md says is what happens.
add_test(NAME Mkik.DoesWhatItsDocumentShows
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/mkik/run_document.sh
                 ${PROJECT_SOURCE_DIR}/docs/your-arm.md
                 ${PROJECT_SOURCE_DIR}/arms/bench_parallel.urdf ${CMAKE_RUNTIME_OUTPUT_DIRECTORY} 5)
