# The core: against the solver libraries that mkik makes of the arms of arms/, and solvers built
# elsewhere.
qal_require(Eigen3 libeigen3-dev)

set(arm_libraries)
file(GLOB arms CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/arms/*.*)
foreach(arm ${arms})
  get_filename_component(name ${arm} NAME_WE)
  set(library ${CMAKE_CURRENT_BINARY_DIR}/qal/${name}/libik.so)
  add_custom_command(
    OUTPUT ${library}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/qal/${name}
    COMMAND ${CMAKE_COMMAND} -E env CXX=${CMAKE_CXX_COMPILER} $<TARGET_FILE:mkik> ${arm} -o ${library}
            > ${library}.txt
    DEPENDS mkik ${arm} VERBATIM)
  list(APPEND arm_libraries ${library})
endforeach()

# Solvers without a linker map: the gantry of foreign.cmake, and one whose own class has a namesake
# in the test program.
qal_foreign_solver(gantry ${CMAKE_CXX_COMPILER} -O0 -I ${foreign})
set(namesake ${CMAKE_CURRENT_BINARY_DIR}/qal/namesake/libik.so)
add_custom_command(
  OUTPUT ${namesake}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/qal/namesake
  COMMAND ${CMAKE_CXX_COMPILER} -std=c++17 -O0 -fPIC -shared -I ${foreign}
          ${CMAKE_CURRENT_SOURCE_DIR}/qal/namesake_solver.cpp -o ${namesake}
  DEPENDS qal/namesake_solver.cpp ${interface} VERBATIM)
add_custom_target(qal_solver_libraries DEPENDS ${arm_libraries} ${namesake})

add_executable(qal_core_test qal/arm_test.cpp qal/inverse_test.cpp qal/kinematics_test.cpp
                             qal/solver_test.cpp)
target_compile_definitions(
  qal_core_test
  PRIVATE QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms" QAL_REFERENCE_SOLVER="$<TARGET_FILE:ik>"
          QAL_ARM_LIBRARIES="${CMAKE_CURRENT_BINARY_DIR}/qal" QAL_FOREIGN_LIBRARIES="${foreign}"
          QAL_PLAIN_NAMES="$<TARGET_FILE:plain_names>")
target_link_libraries(qal_core_test PRIVATE qal_build_options qal_static qal_tools_arm
                                            Eigen3::Eigen GTest::gtest_main)
add_dependencies(qal_core_test qal_solver_libraries qal_foreign_gantry qal_foreign_without_forward
                 plain_names ik)
# It defines the solver's functions itself, and the solvers' own classes, for all to see.
set_target_properties(qal_core_test PROPERTIES ENABLE_EXPORTS ON)
gtest_discover_tests(qal_core_test)
