# Configures where the tools' packages are hidden: without the tools, and one line says so; an error
# where they are asked for.
#   cmake -DSOURCE=... -DBINARY=... -DCOMPILER=... -DHIDDEN=... -DPACKAGES=... -P without_packages.cmake

function(configure result)
  file(REMOVE_RECURSE ${BINARY})
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${BINARY}
                          -DCMAKE_CXX_COMPILER=${COMPILER} ${HIDDEN} ${ARGN}
                  RESULT_VARIABLE failed OUTPUT_VARIABLE output ERROR_VARIABLE output)
  string(REGEX REPLACE "[ \n]+" " " words "${output}")
  if(NOT words MATCHES "${PACKAGES}\\)" OR (failed AND NOT words MATCHES "QAL_BUILD_TOOLS=ON, but"))
    message(FATAL_ERROR "Nothing says that packages are missing:\n${output}")
  endif()
  set(${result} ${failed} PARENT_SCOPE)
  set(output "${output}" PARENT_SCOPE)
endfunction()

configure(failed -DQAL_BUILD_TOOLS=ON)
if(NOT failed)
  message(FATAL_ERROR "Tools without their packages were configured")
endif()

configure(failed)
string(REGEX MATCHALL "[^\n]*(missing|not find|[Ww]arning)[^\n]*" lines "${output}")
list(LENGTH lines count)
if(failed OR NOT count EQUAL 1 OR NOT lines MATCHES "QAL_BUILD_TOOLS=ON")
  message(FATAL_ERROR "Not one line on what is left out:\n${output}")
endif()
if(NOT EXISTS ${BINARY}/src OR NOT EXISTS ${BINARY}/solver OR EXISTS ${BINARY}/tools)
  message(FATAL_ERROR "Not the libraries alone are configured")
endif()
