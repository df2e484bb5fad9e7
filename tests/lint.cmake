# Static analysis of what ships, where the tools are installed; `make lint` runs just these. Tests
# run under the sanitizers instead.
if(NOT CMAKE_BUILD_TYPE STREQUAL RelWithDebInfo OR NOT CMAKE_EXPORT_COMPILE_COMMANDS)
  return()
endif()
find_program(QAL_RUN_CLANG_TIDY run-clang-tidy)
find_program(QAL_CPPCHECK cppcheck)

if(QAL_RUN_CLANG_TIDY)
  add_test(NAME Lint.ClangTidy COMMAND ${QAL_RUN_CLANG_TIDY} -quiet -j 2 -p ${PROJECT_BINARY_DIR}
                                       ${PROJECT_SOURCE_DIR}/\(io|python/src|solver|tools\)/
                                       ${PROJECT_BINARY_DIR}/layers/)
  set_tests_properties(Lint.ClangTidy PROPERTIES PROCESSORS 2)
endif()

if(QAL_CPPCHECK)
  # Not its advice on signatures, which are an interface, and on loops; and not its count of members
  # that only structured bindings name.
  add_test(
    NAME Lint.Cppcheck
    COMMAND
      ${QAL_CPPCHECK} --project=${PROJECT_BINARY_DIR}/compile_commands.json
      --file-filter=${PROJECT_BINARY_DIR}/layers/* --file-filter=${PROJECT_SOURCE_DIR}/solver/*
      --file-filter=${PROJECT_SOURCE_DIR}/io/* --file-filter=${PROJECT_SOURCE_DIR}/python/* --file-filter=${PROJECT_SOURCE_DIR}/tools/* --enable=warning,style,performance,portability
      --suppress=constParameter --suppress=passedByValue --suppress=useStlAlgorithm
      --suppress=unusedStructMember --inline-suppr --error-exitcode=1 --quiet)
endif()
