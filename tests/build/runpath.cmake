# Checks the RUNPATH of every program and library of a build tree: each element begins at the file.
# An empty one would be the folder that a program is started in.
#   cmake -DBINARY=... -P runpath.cmake

file(GLOB files ${BINARY}/lib/*.so* ${BINARY}/bin/*)
set(checked 0)
foreach(file ${files})
  execute_process(COMMAND readelf -d ${file} OUTPUT_VARIABLE dynamic ERROR_QUIET)
  if(dynamic MATCHES "\\(RPATH\\)")
    message(SEND_ERROR "${file} has an RPATH, which LD_LIBRARY_PATH can't override")
  endif()
  if(dynamic MATCHES "\\(RUNPATH\\)[^\n]*\\[([^\n]*)\\]")
    if(NOT CMAKE_MATCH_1 MATCHES "^\\$ORIGIN(/[^:]+)?(:\\$ORIGIN(/[^:]+)?)*$")
      message(SEND_ERROR "${file}, if it isn't a left-over, has the RUNPATH [${CMAKE_MATCH_1}]")
    endif()
    math(EXPR checked "${checked} + 1")
  endif()
endforeach()
if(checked LESS 2)
  message(SEND_ERROR "Only ${checked} files with a RUNPATH in ${BINARY}")
endif()
