# Static analysis of what ships, where the tools are installed; `make lint` runs just these. Tests
# run under the sanitizers instead.
if(NOT CMAKE_BUILD_TYPE STREQUAL RelWithDebInfo OR NOT CMAKE_EXPORT_COMPILE_COMMANDS)
  return()
endif()
find_program(QAL_RUN_CLANG_TIDY run-clang-tidy)
find_program(QAL_CPPCHECK cppcheck)

# Of a unity build, the files that include the sources: what those have in common is looked at once.
# The settings are those of the folder above, so each folder of the sources hands its own on.
if(QAL_RUN_CLANG_TIDY)
  set(folders io tools)
  if(QAL_BUILD_PYTHON)
    list(APPEND folders python)
  endif()
  foreach(folder ${folders})
    configure_file(${PROJECT_SOURCE_DIR}/${folder}/.clang-tidy ${PROJECT_BINARY_DIR}/${folder}/.clang-tidy COPYONLY)
  endforeach()
  configure_file(${PROJECT_SOURCE_DIR}/.clang-tidy ${PROJECT_BINARY_DIR}/.clang-tidy COPYONLY)
  add_test(NAME Lint.ClangTidy COMMAND ${QAL_RUN_CLANG_TIDY} -quiet -j 2 -p ${PROJECT_BINARY_DIR}
                                       ${PROJECT_BINARY_DIR}/\(io|layers|python|solver|src|tools\)/)
  set_tests_properties(Lint.ClangTidy PROPERTIES PROCESSORS 2)
endif()

if(QAL_CPPCHECK)
  # Not its advice on signatures, which are an interface, and on loops; not its count of members that
  # only structured bindings name, nor of variables, which the compilers do. It can't parse the file
  # that carries the page.
  add_test(
    NAME Lint.Cppcheck
    COMMAND
      ${QAL_CPPCHECK} ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/solver ${PROJECT_SOURCE_DIR}/io
      ${PROJECT_SOURCE_DIR}/tools ${PROJECT_SOURCE_DIR}/python -i ${PROJECT_SOURCE_DIR}/io/report_page.cpp
      --std=c++17 --enable=warning,style,performance,portability --suppress=constParameter
      --suppress=passedByValue --suppress=useStlAlgorithm --suppress=unusedStructMember
      --suppress=unusedVariable --inline-suppr --error-exitcode=1 --quiet)
endif()
