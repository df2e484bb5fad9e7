# Readers, writers, metrics and texts; a solver of its own for arms that name one.
qal_test_program(
  qal_io_test
  SOURCES io/arm_file_test.cpp io/description_test.cpp io/error_text_test.cpp io/files_test.cpp
          io/limits_test.cpp io/mesh_test.cpp io/metrics_test.cpp io/plot_test.cpp
          io/program_file_test.cpp io/report_reach_test.cpp io/report_test.cpp
          io/trajectory_files_test.cpp
  LIBRARIES qal_reach_io tinyxml2::tinyxml2
  DEFINITIONS QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms" QAL_DOCS_DIR="${PROJECT_SOURCE_DIR}/docs"
              QAL_REFERENCE_SOLVER="$<TARGET_FILE:ik>"
  NEEDS ik)
