# A library with a name of its own, and what the tests call it.
function(qal_ikcheck_library name source)
  add_library(${name} MODULE ${source})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_compile_definitions(${name} PRIVATE ${ARGN})
  target_link_libraries(${name} PRIVATE qal_build_options ${CMAKE_DL_LIBS})
  set_target_properties(${name} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
endfunction()

qal_ikcheck_library(faulty_solver support/faulty_solver.cpp)
qal_ikcheck_library(plain_names ikcheck/odd_names.cpp PLAIN_NAMES)
qal_ikcheck_library(single_precision ikcheck/odd_names.cpp SINGLE_PRECISION)
qal_ikcheck_library(other_namespace ikcheck/odd_names.cpp OTHER_NAMESPACE)
qal_ikcheck_library(wants_missing ikcheck/odd_names.cpp WANTS_MISSING)

qal_test_program(
  qal_ikcheck_test
  SOURCES ikcheck/command_test.cpp ikcheck/elf_file_test.cpp ikcheck/ikcheck_test.cpp
          ikcheck/jacobian_test.cpp ikcheck/report_test.cpp
  LIBRARIES qal_ikcheck
  DEFINITIONS QAL_IKCHECK="$<TARGET_FILE:ikcheck>" QAL_SOUND_SOLVER="$<TARGET_FILE:ik>"
              QAL_FAULTY_SOLVER="$<TARGET_FILE:faulty_solver>"
              QAL_OBJECT_FILE="$<TARGET_OBJECTS:wants_missing>"
              QAL_LIBRARIES="${CMAKE_CURRENT_BINARY_DIR}"
              QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms"
  NEEDS ikcheck ik faulty_solver plain_names single_precision other_namespace wants_missing)
