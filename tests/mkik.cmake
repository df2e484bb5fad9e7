qal_require(kdl_parser libkdl-parser-dev)

qal_test_program(
  qal_mkik_test
  SOURCES mkik/arms_test.cpp mkik/build_test.cpp mkik/mkik_test.cpp mkik/near_family_test.cpp
          mkik/offset_wrist_test.cpp
  LIBRARIES qal_mkik kdl_parser::kdl_parser
  DEFINITIONS QAL_ARMS_DIR="${PROJECT_SOURCE_DIR}/arms" QAL_MKIK="$<TARGET_FILE:mkik>"
              QAL_AARCH64_CXX="${QAL_AARCH64_CXX}" QAL_AARCH64_EMULATOR="${QAL_AARCH64_EMULATOR}"
              QAL_OTHER_SOLVER="$<TARGET_FILE:ik>"
              QAL_SOLVER_BITS="${CMAKE_CURRENT_SOURCE_DIR}/mkik/solver_bits.cpp"
  NEEDS mkik ik)

# What docs/your-arm.md says is what happens.
add_test(NAME Mkik.DoesWhatItsDocumentShows
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/mkik/run_document.sh
                 ${PROJECT_SOURCE_DIR}/docs/your-arm.md
                 ${PROJECT_SOURCE_DIR}/arms/bench_parallel.urdf ${CMAKE_RUNTIME_OUTPUT_DIRECTORY} 7)
