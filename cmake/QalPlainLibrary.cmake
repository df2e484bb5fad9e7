# For find modules of libraries that have no CMake package of their own.

include(FindPackageHandleStandardArgs)

# Finds lib<NAME> with its header, as the target PACKAGE::PACKAGE.
macro(qal_find_plain_library package name header)
  find_library(${package}_LIBRARY ${name})
  find_path(${package}_INCLUDE_DIR ${header})
  find_package_handle_standard_args(${package} DEFAULT_MSG ${package}_LIBRARY ${package}_INCLUDE_DIR)
  mark_as_advanced(${package}_LIBRARY ${package}_INCLUDE_DIR)
  if(${package}_FOUND AND NOT TARGET ${package}::${package})
    add_library(${package}::${package} UNKNOWN IMPORTED)
    set_target_properties(
      ${package}::${package} PROPERTIES IMPORTED_LOCATION ${${package}_LIBRARY}
                                        INTERFACE_INCLUDE_DIRECTORIES ${${package}_INCLUDE_DIR})
  endif()
endmacro()
