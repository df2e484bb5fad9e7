# What the report's page needs: node with npm, and the npm packages that report/package-lock.json
# names. They are installed into the build tree; nothing of them is in the source tree.

set(QAL_BUILD_REPORT AUTO CACHE STRING
    "Build the page of qal report: ON, OFF, or AUTO, when node and its packages can be had")
set_property(CACHE QAL_BUILD_REPORT PROPERTY STRINGS AUTO ON OFF)

# Puts the npm packages of `lock` beside the copy of it in `folder`. Installs run no scripts of the
# packages, which could fetch more. Sets `result` to what went wrong; empty: nothing did.
function(qal_npm_packages lock folder result)
  file(SHA256 ${lock} digest)
  set(stamp ${folder}/node_modules/.qal_lock)
  set(known "")
  if(EXISTS ${stamp})
    file(READ ${stamp} known)
  endif()
  set(${result} "" PARENT_SCOPE)
  if(known STREQUAL digest)
    return()
  endif()
  get_filename_component(source ${lock} DIRECTORY)
  file(COPY ${source}/package.json ${lock} DESTINATION ${folder})
  execute_process(
    COMMAND ${QAL_NPM} ci --ignore-scripts --no-audit --no-fund --loglevel=error --fetch-retries=1
    WORKING_DIRECTORY ${folder} RESULT_VARIABLE failed OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(failed)
    string(REGEX MATCH "[^\n]*[A-Za-z][^\n]*" first "${output}")
    set(${result} "npm could not install the packages of ${lock} (${first})" PARENT_SCOPE)
  else()
    file(WRITE ${stamp} ${digest})
  endif()
endfunction()

# The reason why the page can't be built; empty: it can.
function(qal_prepare_report result)
  find_program(QAL_NODE NAMES node nodejs)
  find_program(QAL_NPM NAMES npm)
  mark_as_advanced(QAL_NODE QAL_NPM)
  set(how "Debian: apt-get install nodejs npm")
  if(NOT QAL_NODE OR NOT QAL_NPM)
    set(${result} "node or npm missing (${how})" PARENT_SCOPE)
    return()
  endif()
  execute_process(COMMAND ${QAL_NODE} --version OUTPUT_VARIABLE version ERROR_QUIET
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT version MATCHES "^v([0-9]+)" OR CMAKE_MATCH_1 LESS 18)
    set(${result} "node 18 or later missing, ${QAL_NODE} is '${version}' (${how})" PARENT_SCOPE)
    return()
  endif()
  qal_npm_packages(${PROJECT_SOURCE_DIR}/report/package-lock.json ${QAL_REPORT_DIR}/stage problem)
  set(${result} "${problem}" PARENT_SCOPE)
endfunction()

set(QAL_REPORT_DIR ${PROJECT_BINARY_DIR}/report)
if(QAL_BUILD_REPORT AND QAL_BUILD_TOOLS)
  qal_prepare_report(problem)
  if(problem)
    if(NOT QAL_BUILD_REPORT STREQUAL AUTO)
      message(FATAL_ERROR "QAL_BUILD_REPORT=${QAL_BUILD_REPORT}, but ${problem}")
    endif()
    message(STATUS "Report's page left out: ${problem}. -DQAL_BUILD_REPORT=ON makes it an error.")
    set(QAL_BUILD_REPORT OFF)
  endif()
endif()
if(NOT QAL_BUILD_REPORT)
  file(REMOVE ${QAL_REPORT_DIR}/page.html)
endif()
