# Checks how files are hardened, and that no folder of the build is in their bytes.
#   cmake "-DFILES=..." "-DFOLDERS=..." -DSYMBOLS=... -P hardened.cmake
# SYMBOLS: what has to be among the symbols that each asks the C library for.

foreach(file ${FILES})
  execute_process(COMMAND readelf -hldsW ${file} OUTPUT_VARIABLE elf COMMAND_ERROR_IS_FATAL ANY)
  foreach(expected "Type: +DYN" "GNU_RELRO" "BIND_NOW|Flags: NOW" "GNU_STACK[^\n]* RW " ${SYMBOLS})
    if(NOT elf MATCHES "${expected}")
      message(SEND_ERROR "${file}: nothing in it matches '${expected}'")
    endif()
  endforeach()
  foreach(folder ${FOLDERS})
    execute_process(COMMAND grep -c -F ${folder} ${file} OUTPUT_VARIABLE lines)
    if(lines GREATER 0)
      message(SEND_ERROR "${file}: '${folder}' is in it")
    endif()
  endforeach()
endforeach()
