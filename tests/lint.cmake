# Static analysis of what ships, where the tools are installed; `make lint` runs just these. Tests
# run under the sanitizers instead.
if(NOT CMAKE_BUILD_TYPE STREQUAL RelWithDebInfo OR NOT CMAKE_EXPORT_COMPILE_COMMANDS)
  return()
endif()
find_program(QAL_RUN_CLANG_TIDY run-clang-tidy)
find_program(QAL_CPPCHECK cppcheck)

# The sources of a target are looked at together, as files of a unity build that include them: their
# headers, which take most of the time, are then read once. `settings` is the folder that has them.
function(qal_lint target settings)
  get_target_property(names ${target} SOURCES)
  get_target_property(folder ${target} SOURCE_DIR)
  set(sources "")
  foreach(name ${names})
    get_filename_component(source ${name} ABSOLUTE BASE_DIR ${folder})
    # Not what the build makes.
    if(source MATCHES "\\.cpp$" AND (source MATCHES "/layers/" OR NOT source MATCHES "^${PROJECT_BINARY_DIR}/"))
      list(APPEND sources ${source})
    endif()
  endforeach()
  add_library(lint_${target} OBJECT EXCLUDE_FROM_ALL ${sources})
  foreach(property INCLUDE_DIRECTORIES COMPILE_DEFINITIONS COMPILE_OPTIONS LINK_LIBRARIES)
    get_target_property(value ${target} ${property})
    if(value)
      set_property(TARGET lint_${target} PROPERTY ${property} ${value})
    endif()
  endforeach()
  set_target_properties(lint_${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 15)
  configure_file(${PROJECT_SOURCE_DIR}/${settings}/.clang-tidy
                 ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/lint_${target}.dir/.clang-tidy COPYONLY)
endfunction()

if(QAL_RUN_CLANG_TIDY)
  foreach(layer core pose solve trajectory facade model answers plan explain study)
    qal_lint(qal_layer_${layer} .)
  endforeach()
  qal_lint(ik .)
  configure_file(${PROJECT_SOURCE_DIR}/.clang-tidy ${PROJECT_BINARY_DIR}/.clang-tidy COPYONLY)
  if(QAL_BUILD_TOOLS)
    qal_lint(qal_io io)
    foreach(target qal_tools_common qal qal_mkik mkik qal_ikcheck ikcheck)
      qal_lint(${target} tools)
    endforeach()
  endif()
  if(QAL_BUILD_PYTHON)
    qal_lint(qal_python python)
  endif()
  add_test(NAME Lint.ClangTidy COMMAND ${QAL_RUN_CLANG_TIDY} -quiet -j 2 -p ${PROJECT_BINARY_DIR}
                                       CMakeFiles/lint_)
  set_tests_properties(Lint.ClangTidy PROPERTIES PROCESSORS 2)
endif()

if(QAL_CPPCHECK)
  # Not its advice on signatures, which are an interface, and on loops; not its count of members that
  # only structured bindings name, nor of variables, nor its guess at arrays, all of which the
  # compilers and the sanitizers look at. It can't parse the file that carries the page.
  add_test(
    NAME Lint.Cppcheck
    COMMAND
      ${QAL_CPPCHECK} ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/solver ${PROJECT_SOURCE_DIR}/io
      ${PROJECT_SOURCE_DIR}/tools ${PROJECT_SOURCE_DIR}/python -i ${PROJECT_SOURCE_DIR}/io/report_page.cpp
      --std=c++17 --enable=warning,style,performance,portability --suppress=constParameter
      --suppress=passedByValue --suppress=useStlAlgorithm --suppress=unusedStructMember
      --suppress=unusedVariable --suppress=ctuArrayIndex --inline-suppr --error-exitcode=1 --quiet)
endif()
