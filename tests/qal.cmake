# The core: against the solver libraries that mkik makes of the arms of arms/, and solvers built
# elsewhere.

set(arm_libraries)
file(GLOB arms CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/arms/*.*)
# Another file of an arm that is there already.
list(FILTER arms EXCLUDE REGEX reference.toml)
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
  if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    set(options --strict)
    # A calibrated arm, and one with an offset wrist, may miss a joint set beside a singularity,
    # which is a note.
    if(name MATCHES "calibrated|offset")
      set(options)
    endif()
    # A pose without a family takes a hundred times as long.
    if(name MATCHES painting)
      set(options --strict --poses 2000)
    endif()
    add_test(NAME Mkik.MakesASoundSolver.${name} COMMAND ikcheck ${library} --arm ${arm} ${options})
  endif()
endforeach()

# A solver without a linker map, whose own class has a namesake in the test program.
qal_foreign_solver(namesake ${CMAKE_CURRENT_SOURCE_DIR}/qal/namesake_solver.cpp
                   ${CMAKE_CXX_COMPILER} -O0)
add_custom_target(qal_solver_libraries DEPENDS ${arm_libraries})

qal_test_program(
  qal_core_test
  SOURCES qal/arm_test.cpp qal/inverse_test.cpp qal/kinematics_test.cpp qal/solver_test.cpp
  DEFINITIONS QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms" QAL_REFERENCE_SOLVER="$<TARGET_FILE:ik>"
              QAL_ARM_LIBRARIES="${CMAKE_CURRENT_BINARY_DIR}/qal" QAL_FOREIGN_LIBRARIES="${foreign}"
              QAL_PLAIN_NAMES="$<TARGET_FILE:plain_names>"
  LIBRARIES qal_io Eigen3::Eigen
  NEEDS qal_solver_libraries qal_foreign_here qal_foreign_namesake qal_foreign_without_forward
        plain_names ik)
# It defines the solver's functions itself, and the solvers' own classes, for all to see.
set_target_properties(qal_core_test PROPERTIES ENABLE_EXPORTS ON)

# Many at once, by several threads; under the thread sanitizer as well.
qal_test_program(qal_batch_test SOURCES qal/batch_test.cpp qal/reach_test.cpp LIBRARIES qal_static)
# In four lanes and in two, where the processor has more.
foreach(hidden AVX512F AVX2)
  add_test(NAME BatchLanes.Without.${hidden}
           COMMAND ${CMAKE_COMMAND} -E env GLIBC_TUNABLES=glibc.cpu.hwcaps=-${hidden}
                   $<TARGET_FILE:qal_batch_test> --gtest_filter=BatchLanes.*)
endforeach()

# The classic operations by value, vs Ikfunc's in one program.
qal_test_program(
  qal_classic_test
  SOURCES qal/classic_test.cpp
  DEFINITIONS QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms"
  LIBRARIES qal_io QAL_kinematics)

# Lines that keep every limit. QAL_LINES says how many for each arm.
qal_test_program(
  qal_line_test
  SOURCES qal/line_test.cpp qal/reach_line_test.cpp
  DEFINITIONS QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms"
  LIBRARIES qal_io)
# Programs by hand, and their streams.
qal_test_program(qal_program_test SOURCES qal/program_test.cpp LIBRARIES qal_io)
# Programs that keep every limit. QAL_PROGRAMS says how many for each arm.
qal_test_program(
  qal_seeded_programs_test
  SOURCES qal/seeded_programs_test.cpp
  DEFINITIONS QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms"
  LIBRARIES qal_io)
# Moves that keep an arm's limits. A million of them: QAL_MOVES=1000000 qal_joint_move_test.
qal_test_program(qal_joint_move_test SOURCES qal/joint_move_test.cpp LIBRARIES qal_io)
# Stops and paces of programs. From how many moments: QAL_STOPS=100000 qal_playback_test.
qal_test_program(
  qal_playback_test
  SOURCES qal/playback_test.cpp
  DEFINITIONS QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms"
  LIBRARIES qal_io)
# Why lines fail, and what makes them work. How many of each arm and cause:
# QAL_EXPLANATIONS=50 qal_explain_test
qal_test_program(
  qal_explain_test
  SOURCES qal/explain_test.cpp
  DEFINITIONS QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms"
  LIBRARIES qal_io)
