# Every operation with arguments and a solver drawn from bytes: by tests here, by fuzzers, and by
# the replay of what the fuzzers have found worth keeping.
add_library(qal_robustness STATIC robustness/operations.cpp robustness/stand_ins.cpp)
target_include_directories(qal_robustness PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(qal_robustness PUBLIC qal_build_options QAL_kinematics ${CMAKE_DL_LIBS})

qal_test_program(qal_robustness_test SOURCES robustness/robustness_test.cpp LIBRARIES qal_robustness
                 DEFINITIONS QAL_KEPT_DIGESTS="${CMAKE_CURRENT_SOURCE_DIR}/robustness/kept_digests.txt")
# Its ikfast functions and its operator new take the place of the libraries'.
set_target_properties(qal_robustness_test PROPERTIES ENABLE_EXPORTS ON)
