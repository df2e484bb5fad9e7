# Runs the program HERE and the command THERE, which both print digests: those of the families that
# are promised on every processor have to be the same.
#   cmake -DHERE=... "-DTHERE=...;..." -P compare.cmake

foreach(place HERE THERE)
  # Standard error is full of what the operations say.
  execute_process(COMMAND ${${place}} OUTPUT_VARIABLE digests ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
  message(STATUS "${place}\n${digests}")
  string(REGEX MATCHALL "same [^\n]+" promised "${digests}")
  string(REGEX MATCHALL "libm [^\n]+" others "${digests}")
  set(${place}_promised "${promised}")
  set(${place}_others "${others}")
endforeach()
if(NOT HERE_promised OR NOT HERE_promised STREQUAL THERE_promised)
  message(FATAL_ERROR "A family that every processor has to give the same bits of doesn't")
endif()
if(HERE_others STREQUAL THERE_others)
  message(STATUS "Here and there every family is the same")
endif()
