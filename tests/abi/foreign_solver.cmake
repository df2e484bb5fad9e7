# Runs the client with the foreign solver and looks at every symbol bound between the libraries.
#   cmake -DCLIENT=... -DFOREIGN=... -P foreign_solver.cmake

execute_process(COMMAND nm -D --defined-only ${FOREIGN} OUTPUT_VARIABLE symbols)
if(NOT symbols MATCHES " W _ZNK?6ikfast")
  message(FATAL_ERROR "The foreign solver exports no template instantiation: nothing is tested")
endif()
get_filename_component(directory ${FOREIGN} DIRECTORY)
execute_process(COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${directory} LD_BIND_NOW=1
                        LD_DEBUG=bindings ${CLIENT}
                RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE bindings)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "The client failed with ${result}: ${output}")
endif()
string(REGEX MATCHALL
       "binding file [^\n]*libQAL_kinematics[^ \n]* \\[0\\] to [^ \n]*libik.so[^\n]*" to "${bindings}")
string(REGEX MATCHALL
       "binding file [^\n]*libik.so \\[0\\] to [^ \n]*libQAL_kinematics[^\n]*" from "${bindings}")
list(LENGTH to count)
if(NOT count EQUAL 2 OR NOT to MATCHES "ComputeIk" OR NOT to MATCHES "ComputeFk" OR from)
  message(FATAL_ERROR "The libraries bind more than the two functions:\n${to}\n${from}")
endif()
