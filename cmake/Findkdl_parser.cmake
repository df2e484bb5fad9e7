# Finds kdl_parser, whose own CMake package wants ROS.

include(FindPackageHandleStandardArgs)
find_package(orocos_kdl QUIET)
find_library(kdl_parser_LIBRARY kdl_parser)
find_path(kdl_parser_INCLUDE_DIR kdl_parser/kdl_parser.hpp)
find_package_handle_standard_args(kdl_parser DEFAULT_MSG kdl_parser_LIBRARY kdl_parser_INCLUDE_DIR
                                  orocos_kdl_FOUND)
mark_as_advanced(kdl_parser_LIBRARY kdl_parser_INCLUDE_DIR)
if(kdl_parser_FOUND AND NOT TARGET kdl_parser::kdl_parser)
  add_library(kdl_parser::kdl_parser UNKNOWN IMPORTED)
  set_target_properties(
    kdl_parser::kdl_parser
    PROPERTIES IMPORTED_LOCATION ${kdl_parser_LIBRARY}
               INTERFACE_INCLUDE_DIRECTORIES
               "${kdl_parser_INCLUDE_DIR};${orocos_kdl_INCLUDE_DIRS}"
               INTERFACE_LINK_LIBRARIES "${orocos_kdl_LIBRARIES}")
endif()
