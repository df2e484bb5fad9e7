# Finds libyaml, which has no CMake package of its own.

include(FindPackageHandleStandardArgs)
find_library(libyaml_LIBRARY yaml)
find_path(libyaml_INCLUDE_DIR yaml.h)
find_package_handle_standard_args(libyaml DEFAULT_MSG libyaml_LIBRARY libyaml_INCLUDE_DIR)
mark_as_advanced(libyaml_LIBRARY libyaml_INCLUDE_DIR)
if(libyaml_FOUND AND NOT TARGET libyaml::libyaml)
  add_library(libyaml::libyaml UNKNOWN IMPORTED)
  set_target_properties(libyaml::libyaml PROPERTIES IMPORTED_LOCATION ${libyaml_LIBRARY}
                                                    INTERFACE_INCLUDE_DIRECTORIES
                                                    ${libyaml_INCLUDE_DIR})
endif()
