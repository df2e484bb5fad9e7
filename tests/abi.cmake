# The binary interface.
set(abi ${CMAKE_CURRENT_SOURCE_DIR}/abi)

add_custom_target(update_exports)
foreach(target QAL_kinematics ik qal_shared)
  set(arguments -DLIBRARY=$<TARGET_FILE:${target}> -DLIST=${abi}/${target}.exports)
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

# Every header by itself, and every source, with either include root.
file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/src
     ${PROJECT_SOURCE_DIR}/src/*.h)
file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/*.cpp)
foreach(header ${headers})
  file(RELATIVE_PATH from_kinematics ${PROJECT_SOURCE_DIR}/src/kinematics
       ${PROJECT_SOURCE_DIR}/src/${header})
  string(MAKE_C_IDENTIFIER ${header} name)
  file(CONFIGURE OUTPUT alone/src/${name}.cpp CONTENT "#include \"${header}\"\n")
  file(CONFIGURE OUTPUT alone/kinematics/${name}.cpp CONTENT "#include \"${from_kinematics}\"\n")
  list(APPEND alone_src ${CMAKE_CURRENT_BINARY_DIR}/alone/src/${name}.cpp)
  list(APPEND alone_kinematics ${CMAKE_CURRENT_BINARY_DIR}/alone/kinematics/${name}.cpp)
endforeach()
add_library(qal_alone_src OBJECT ${alone_src})
target_include_directories(qal_alone_src PRIVATE ${PROJECT_SOURCE_DIR}/src)
add_library(qal_alone_kinematics OBJECT ${alone_kinematics} ${sources})
target_include_directories(qal_alone_kinematics PRIVATE ${PROJECT_SOURCE_DIR}/src/kinematics)
foreach(target qal_alone_src qal_alone_kinematics)
  target_link_libraries(${target} PRIVATE qal_build_options)
  target_compile_options(${target} PRIVATE -O0)
endforeach()
