# Solvers built elsewhere: other compilers, other flags, a copy of the interface header of their own.
# Each takes the place of the libik.so that the library was linked with.

add_executable(qal_foreign_test abi/foreign_solver_test.cpp)
target_include_directories(qal_foreign_test PRIVATE support)
target_link_libraries(qal_foreign_test PRIVATE qal_build_options QAL_kinematics GTest::gtest_main)

set(foreign ${CMAKE_CURRENT_BINARY_DIR}/foreign)
foreach(interface ikfast.h array_solver.h)
  configure_file(${PROJECT_SOURCE_DIR}/src/kinematics/${interface} ${foreign}/kinematics/${interface}
                 COPYONLY)
endforeach()

# Builds foreign/NAME/libik.so of a source with these commands' words.
function(qal_foreign_solver name source)
  set(library ${foreign}/${name}/libik.so)
  set(object ${foreign}/${name}/solver.o)
  add_custom_command(
    OUTPUT ${library}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${foreign}/${name}
    COMMAND ${ARGN} -std=c++17 -fPIC -I ${foreign} -MD -MF ${object}.d -MT ${library} -c ${source} -o
            ${object}
    COMMAND ${ARGN} -shared ${object} -o ${library}
    DEPENDS ${source} ${foreign}/kinematics/ikfast.h
    DEPFILE ${object}.d VERBATIM)
  add_custom_target(qal_foreign_${name} ALL DEPENDS ${library})
endfunction()

set(faulty ${CMAKE_CURRENT_SOURCE_DIR}/support/faulty_solver.cpp)
foreach(compiler g++ clang++)
  string(REPLACE "++" "" name ${compiler})
  find_program(QAL_FOREIGN_${name} ${compiler})
  if(NOT QAL_FOREIGN_${name})
    message(STATUS "Foreign solvers: none by ${compiler}, which is not installed")
    continue()
  endif()
  foreach(level 0 3)
    set(solver ${name}_O${level})
    qal_foreign_solver(${solver} ${faulty} ${QAL_FOREIGN_${name}} -O${level})
    add_test(NAME Foreign.${solver}
             COMMAND ${CMAKE_COMMAND} -DCLIENT=$<TARGET_FILE:qal_foreign_test>
                     -DFOREIGN=${foreign}/${solver}/libik.so
                     -P ${CMAKE_CURRENT_SOURCE_DIR}/abi/foreign_solver.cmake)
  endforeach()
endforeach()

# By the compiler that is there in any case, for the tests of the tools.
qal_foreign_solver(here ${faulty} ${CMAKE_CXX_COMPILER} -O0)

# What is missing shows when the library is loaded, not in the middle of a move.
qal_foreign_solver(without_forward ${CMAKE_CURRENT_SOURCE_DIR}/ikcheck/odd_names.cpp
                   ${CMAKE_CXX_COMPILER} -D WITHOUT_FORWARD)
add_test(NAME Foreign.WithoutForward COMMAND qal_foreign_test --gtest_list_tests)
set_tests_properties(
  Foreign.WithoutForward
  PROPERTIES ENVIRONMENT LD_LIBRARY_PATH=${foreign}/without_forward PASS_REGULAR_EXPRESSION
             "symbol lookup error: [^\n]*/libQAL_kinematics.so.1: undefined symbol: _ZN6ikfast9ComputeFk")
