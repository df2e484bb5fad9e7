# The binary interface.
set(abi ${CMAKE_CURRENT_SOURCE_DIR}/abi)

add_custom_target(update_exports)
set(package_of_QAL_kinematics libqal-kinematics1)
set(package_of_qal_shared libqal0)
foreach(target QAL_kinematics ik qal_shared)
  set(arguments -DLIBRARY=$<TARGET_FILE:${target}> -DLIST=${abi}/${target}.exports)
  if(DEFINED package_of_${target})
    list(APPEND arguments -DVERSION=${PROJECT_VERSION}
         -DSYMBOLS=${PROJECT_SOURCE_DIR}/packaging/debian/${package_of_${target}}.symbols)
  endif()
  add_test(NAME Abi.Exports.${target} COMMAND ${CMAKE_COMMAND} ${arguments}
                                              -P ${abi}/exports.cmake)
  add_custom_command(TARGET update_exports POST_BUILD
                     COMMAND ${CMAKE_COMMAND} ${arguments} -DUPDATE=ON -P ${abi}/exports.cmake)
  add_dependencies(update_exports ${target})
endforeach()

# One initialiser, the compiler's own. Sanitizers and coverage bring more.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize|--coverage")
  foreach(target QAL_kinematics ik qal_shared)
    add_test(NAME Abi.NothingRunsAtLoad.${target} COMMAND readelf -SW $<TARGET_FILE:${target}>)
    set_tests_properties(Abi.NothingRunsAtLoad.${target} PROPERTIES PASS_REGULAR_EXPRESSION
                                                                    "INIT_ARRAY +[^ ]+ [^ ]+ 000008 ")
  endforeach()
endif()

# Every header by itself, without an include root, hence with any. So are the sources compiled.
file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/src
     ${PROJECT_SOURCE_DIR}/src/*.h)
foreach(header ${headers})
  string(MAKE_C_IDENTIFIER ${header} name)
  file(CONFIGURE OUTPUT alone/${name}.cpp CONTENT "#include \"${PROJECT_SOURCE_DIR}/src/${header}\"\n")
  list(APPEND alone ${CMAKE_CURRENT_BINARY_DIR}/alone/${name}.cpp)
endforeach()
add_library(qal_headers_alone OBJECT ${alone})
target_link_libraries(qal_headers_alone PRIVATE qal_build_options)
target_compile_options(qal_headers_alone PRIVATE -O0)
set_target_properties(qal_headers_alone PROPERTIES UNITY_BUILD OFF)
