# Finds libelf, which has no CMake package of its own.

include(FindPackageHandleStandardArgs)
find_library(libelf_LIBRARY elf)
find_path(libelf_INCLUDE_DIR gelf.h)
find_package_handle_standard_args(libelf DEFAULT_MSG libelf_LIBRARY libelf_INCLUDE_DIR)
mark_as_advanced(libelf_LIBRARY libelf_INCLUDE_DIR)
if(libelf_FOUND AND NOT TARGET libelf::libelf)
  add_library(libelf::libelf UNKNOWN IMPORTED)
  set_target_properties(libelf::libelf PROPERTIES IMPORTED_LOCATION ${libelf_LIBRARY}
                                                    INTERFACE_INCLUDE_DIRECTORIES
                                                    ${libelf_INCLUDE_DIR})
endif()
