# Programs that were built against version 1.0.0 go on working with the present library.

# A library of that version's shape, for linking and comparing: every declaration gets a body.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS abi/v1.h)
file(READ ${CMAKE_CURRENT_SOURCE_DIR}/abi/v1.h declarations)
string(REGEX REPLACE "\\)( const|);" ")\\1 __attribute__((used)) { __builtin_abort(); }" bodies
                     "${declarations}")
file(CONFIGURE OUTPUT v1/library.cpp CONTENT "${bodies}" @ONLY)
add_library(qal_v1 SHARED ${CMAKE_CURRENT_BINARY_DIR}/v1/library.cpp)
target_compile_options(qal_v1 PRIVATE -w -g)
set_target_properties(qal_v1 PROPERTIES OUTPUT_NAME QAL_kinematics SOVERSION 1
                                        LIBRARY_OUTPUT_DIRECTORY v1 CXX_VISIBILITY_PRESET hidden)

add_executable(qal_v1_caller abi/v1_caller.cpp)
target_link_libraries(qal_v1_caller PRIVATE qal_build_options qal_v1 ${CMAKE_DL_LIBS})
add_dependencies(qal_v1_caller QAL_kinematics)
set_target_properties(qal_v1_caller PROPERTIES SKIP_BUILD_RPATH ON)
add_test(NAME Abi.Version1Caller COMMAND qal_v1_caller)
set_tests_properties(Abi.Version1Caller PROPERTIES ENVIRONMENT "LD_BIND_NOW=1;\
LD_LIBRARY_PATH=$<TARGET_FILE_DIR:QAL_kinematics>")

# Every layout and result type, where the tool and debug information are. New functions are welcome.
find_program(QAL_ABIDIFF abidiff)
if(QAL_ABIDIFF AND CMAKE_BUILD_TYPE STREQUAL RelWithDebInfo)
  add_test(NAME Abi.Version1Layout COMMAND ${QAL_ABIDIFF} --no-added-syms $<TARGET_FILE:qal_v1>
                                           $<TARGET_FILE:QAL_kinematics>)
endif()
