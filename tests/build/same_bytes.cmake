# Builds the libraries of a copy of the sources, in another folder, and compares them with those of
# this build.
#   cmake -DSOURCE=... -DBINARY=... -DELSEWHERE=... -DCOMPILER=... -DFLAGS=... -DBUILD_TYPE=...
#         -DWARNINGS_AS_ERRORS=... -DIK_SOLVER=... -P same_bytes.cmake

file(REMOVE_RECURSE ${ELSEWHERE})
foreach(part CMakeLists.txt cmake packaging solver src)
  file(COPY ${SOURCE}/${part} DESTINATION ${ELSEWHERE}/copy)
endforeach()
execute_process(
  COMMAND
    ${CMAKE_COMMAND} -S ${ELSEWHERE}/copy -B ${ELSEWHERE}/out -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_CXX_FLAGS=${FLAGS} -DCMAKE_BUILD_TYPE=${BUILD_TYPE} -DQAL_BUILD_TOOLS=OFF
    -DQAL_BUILD_EXAMPLES=OFF -DQAL_WARNINGS_AS_ERRORS=${WARNINGS_AS_ERRORS}
    -DQAL_IK_SOLVER=${IK_SOLVER} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${ELSEWHERE}/out --parallel 2
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

file(GLOB libraries RELATIVE ${ELSEWHERE}/out/lib ${ELSEWHERE}/out/lib/*.so*)
list(LENGTH libraries count)
if(count LESS 2)
  message(FATAL_ERROR "Nothing was built: ${libraries}")
endif()
foreach(library ${libraries})
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${BINARY}/lib/${library}
                          ${ELSEWHERE}/out/lib/${library} RESULT_VARIABLE differs)
  if(differs)
    message(SEND_ERROR "${library} differs from what another folder gives")
  endif()
endforeach()
