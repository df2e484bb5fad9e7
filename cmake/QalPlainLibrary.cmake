# For find modules of libraries that have no CMake package of their own.

include(FindPackageHandleStandardArgs)

# Finds lib<NAME>, of several names the first that is there, with its header, as the target
# PACKAGE::PACKAGE. What follows are folders below the usual ones where the header may be.
macro(qal_find_plain_library package name header)
  find_library(${package}_LIBRARY NAMES ${name})
  find_path(${package}_INCLUDE_DIR ${header} PATH_SUFFIXES ${ARGN})
  find_package_handle_standard_args(${package} DEFAULT_MSG ${package}_LIBRARY ${package}_INCLUDE_DIR)
  mark_as_advanced(${package}_LIBRARY ${package}_INCLUDE_DIR)
  if(${package}_FOUND AND NOT TARGET ${package}::${package})
    add_library(${package}::${package} UNKNOWN IMPORTED)
    set_target_properties(
      ${package}::${package} PROPERTIES IMPORTED_LOCATION ${${package}_LIBRARY}
                                        INTERFACE_INCLUDE_DIRECTORIES ${${package}_INCLUDE_DIR})
  endif()
endmacro()
