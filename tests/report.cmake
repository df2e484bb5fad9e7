# The report's page, in a browser, and that it is the same wherever it is built. The page is one and
# the same under sanitizers.
if(NOT QAL_BUILD_REPORT OR CMAKE_CXX_FLAGS MATCHES "-fsanitize|--coverage")
  return()
endif()

add_test(NAME Report.PageIsLeftOutWithoutNode
         COMMAND ${CMAKE_COMMAND} -DSOURCE=${PROJECT_SOURCE_DIR} -DCOMPILER=${CMAKE_CXX_COMPILER}
                 -DBINARY=${CMAKE_CURRENT_BINARY_DIR}/report/without_node
                 -P ${CMAKE_CURRENT_SOURCE_DIR}/report/without_node.cmake)
add_test(NAME Report.PageIsTheSameInAnotherFolder
         COMMAND ${CMAKE_COMMAND} -DNODE=${QAL_NODE} -DSTAGE=${QAL_REPORT_DIR}/stage
                 -DPAGE=${QAL_REPORT_DIR}/page.html -DELSEWHERE=${CMAKE_CURRENT_BINARY_DIR}/report/elsewhere
                 -P ${CMAKE_CURRENT_SOURCE_DIR}/report/same_page.cmake)

find_program(QAL_CHROMIUM NAMES chromium chromium-browser google-chrome)
mark_as_advanced(QAL_CHROMIUM)
set(stage ${QAL_REPORT_DIR}/test)
set(problem "chromium missing (Debian: apt-get install chromium)")
if(QAL_CHROMIUM)
  qal_npm_packages(${CMAKE_CURRENT_SOURCE_DIR}/report/package-lock.json ${stage} problem)
endif()
if(problem)
  message(STATUS "Tests of the report's page left out: ${problem}")
  return()
endif()
# Beside their packages, where node looks for these.
foreach(file page_test.mjs reach_page.mjs support.mjs)
  configure_file(report/${file} ${stage}/${file} COPYONLY)
endforeach()
add_test(NAME Report.Page COMMAND ${QAL_NODE} ${stage}/page_test.mjs)
set_tests_properties(
  Report.Page
  PROPERTIES
    TIMEOUT 900
    ENVIRONMENT
    "QAL=$<TARGET_FILE:qal>;QAL_SOURCE=${PROJECT_SOURCE_DIR};QAL_CHROMIUM=${QAL_CHROMIUM};QAL_WORK=${stage}/made;QAL_SCREENSHOTS=${QAL_REPORT_DIR}/screenshots"
)
