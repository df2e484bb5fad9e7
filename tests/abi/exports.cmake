# Compares what a shared library exports and needs with the list kept for it.
#   cmake -DLIBRARY=... -DLIST=... [-DUPDATE=ON] -P exports.cmake
# UPDATE writes the list anew.

execute_process(COMMAND nm -D --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND objdump -p ${LIBRARY} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "(^|\n)[0-9a-f]+ " "\\1" symbols "${symbols}")
string(REGEX MATCHALL "SONAME +[^\n]+|NEEDED +libik[^\n]+" headers "${headers}")
list(TRANSFORM headers REPLACE " +" " ")
string(STRIP "${symbols}" found)
string(REPLACE ";" "\n" headers "${headers}")
set(found "${headers}\n${found}\n")

# Instantiations of templates, of std's and ikfast's alike, are weak: the letter is W, V or u.
if(found MATCHES "\n([^T] [^\n]+)")
  message(FATAL_ERROR "${LIBRARY} exports what is no function of its own: ${CMAKE_MATCH_1}")
endif()
if(UPDATE)
  file(WRITE ${LIST} "${found}")
  return()
endif()
file(READ ${LIST} kept)
if(NOT found STREQUAL kept)
  file(WRITE ${LIBRARY}.exports "${found}")
  execute_process(COMMAND diff -u ${LIST} ${LIBRARY}.exports)
  message(FATAL_ERROR "The binary interface of ${LIBRARY} is no longer ${LIST}. If callers built "
                      "earlier still work, build the target update_exports.")
endif()
