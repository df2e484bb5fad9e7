# Builds the report's page in another folder and compares it with that of this build.
#   cmake -DNODE=... -DSTAGE=... -DPAGE=... -DELSEWHERE=... -P same_page.cmake

file(REMOVE_RECURSE ${ELSEWHERE})
file(MAKE_DIRECTORY ${ELSEWHERE})
foreach(part src package.json tsconfig.json index.html style.css build.mjs)
  file(COPY ${STAGE}/${part} DESTINATION ${ELSEWHERE})
endforeach()
file(CREATE_LINK ${STAGE}/node_modules ${ELSEWHERE}/node_modules SYMBOLIC)
execute_process(COMMAND ${NODE} build.mjs page.html page.inc WORKING_DIRECTORY ${ELSEWHERE}
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${PAGE} ${ELSEWHERE}/page.html
                RESULT_VARIABLE differs)
if(differs)
  message(FATAL_ERROR "The page differs from what another folder gives")
endif()
