# The tool as a process, also with a solver that misbehaves in place of the reference arm's.
qal_test_program(
  qal_command_test
  SOURCES tool/usage_test.cpp tool/kinematics_commands_test.cpp tool/move_commands_test.cpp
          tool/file_commands_test.cpp tool/plan_command_test.cpp tool/explain_command_test.cpp
          tool/reach_command_test.cpp
  LIBRARIES nlohmann_json::nlohmann_json
  DEFINITIONS QAL_BINARY="$<TARGET_FILE:qal>" QAL_FOREIGN_SOLVER_DIR="${foreign}/here"
              QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms"
              QAL_EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/examples"
  NEEDS qal qal_foreign_here)

add_test(NAME Tool.ProgramsDocument
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/mkik/run_document.sh ${PROJECT_SOURCE_DIR}/docs/programs.md
                 ${PROJECT_SOURCE_DIR}/arms/reference.urdf $<TARGET_FILE_DIR:qal> 2 my_program.toml)
add_test(NAME Tool.ExplainDocument
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/mkik/run_document.sh ${PROJECT_SOURCE_DIR}/docs/explain.md
                 ${PROJECT_SOURCE_DIR}/arms/reference.urdf $<TARGET_FILE_DIR:qal> 14 cell.toml)
add_test(NAME Tool.ReachDocument
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/mkik/run_document.sh ${PROJECT_SOURCE_DIR}/docs/reach.md
                 ${PROJECT_SOURCE_DIR}/arms/reference.urdf $<TARGET_FILE_DIR:qal> 8)
find_program(QAL_PARALLEL parallel)
if(NOT QAL_PARALLEL)
  message(FATAL_ERROR "parallel is missing. Debian: sudo apt-get install parallel")
endif()
add_test(NAME Tool.ClusterDocument
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/mkik/run_document.sh ${PROJECT_SOURCE_DIR}/docs/cluster.md
                 ${PROJECT_SOURCE_DIR}/arms/reference.urdf $<TARGET_FILE_DIR:qal> 6 reach.sbatch)
# What ROS 2 reads, by its own parser; and what docs/ros2.md says is what happens. Debian's Python has
# the parser.
add_test(NAME Ros.FilesFitTheInterfaces
         COMMAND /usr/bin/python3 ${CMAKE_CURRENT_SOURCE_DIR}/tool/ros_files.py $<TARGET_FILE:qal>
                 ${PROJECT_SOURCE_DIR}/docs/ros2.md ${PROJECT_SOURCE_DIR}/arms/foundry_spherical.urdf)
add_test(NAME Ros.DocumentShowsWhatHappens
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/mkik/run_document.sh ${PROJECT_SOURCE_DIR}/docs/ros2.md
                 ${PROJECT_SOURCE_DIR}/arms/reference.urdf ${CMAKE_RUNTIME_OUTPUT_DIRECTORY} 7)

# Sanitizers need more memory than the limits of the one leave, and much time for the other.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_test(NAME Tool.ClusterScriptGoesOn
           COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/tool/cluster.sh ${PROJECT_SOURCE_DIR}/docs/cluster.md
                   ${PROJECT_SOURCE_DIR}/arms/reference.urdf $<TARGET_FILE_DIR:qal>)
  add_test(NAME Tool.Faults COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/tool/faults.sh $<TARGET_FILE:qal>
                                    $<TARGET_FILE:mkik>
                                    ${PROJECT_SOURCE_DIR}/arms/bench_parallel.urdf)
endif()
