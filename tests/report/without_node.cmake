# Configures with what is no node and with an npm that fails: without the page, and one line says why
# and what to do; an error where the page is asked for.
#   cmake -DSOURCE=... -DBINARY=... -DCOMPILER=... -P without_node.cmake

function(configure expected)
  file(REMOVE_RECURSE ${BINARY})
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${BINARY}
                          -DCMAKE_CXX_COMPILER=${COMPILER} ${ARGN}
                  RESULT_VARIABLE failed OUTPUT_VARIABLE output ERROR_VARIABLE output)
  string(REGEX REPLACE "[ \n]+" " " words "${output}")
  if(NOT words MATCHES "${expected}")
    message(FATAL_ERROR "'${expected}' isn't said:\n${output}")
  endif()
  set(failed ${failed} PARENT_SCOPE)
endfunction()

foreach(case "QAL_NODE=node 18 or later missing.*Debian: apt-get install nodejs npm"
             "QAL_NPM=npm could not install the packages of")
  string(REGEX MATCH "^[A-Z_]+" program "${case}")
  string(REGEX REPLACE "^[A-Z_]+=" "" reason "${case}")
  configure("Report's page left out: ${reason}.*QAL_BUILD_REPORT=ON" -D${program}=/bin/false)
  if(failed)
    message(FATAL_ERROR "Not configured without the page")
  endif()
  configure("QAL_BUILD_REPORT=ON, but ${reason}" -D${program}=/bin/false -DQAL_BUILD_REPORT=ON)
  if(NOT failed)
    message(FATAL_ERROR "Configured without a page that was asked for")
  endif()
endforeach()
