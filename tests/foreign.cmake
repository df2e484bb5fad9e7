# Solvers built elsewhere: other compilers, other flags, a copy of the interface header of their own.
# Each takes the place of the libik.so that the library was linked with.

add_executable(qal_foreign_test abi/foreign_solver_test.cpp)
target_include_directories(qal_foreign_test PRIVATE support)
target_link_libraries(qal_foreign_test PRIVATE qal_build_options QAL_kinematics GTest::gtest_main)

set(foreign ${CMAKE_CURRENT_BINARY_DIR}/foreign)
set(interface ${PROJECT_SOURCE_DIR}/src/kinematics/ikfast.h)
configure_file(${interface} ${foreign}/ikfast.h COPYONLY)
# The later layout: polymorphic entries, one more function of the list.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${interface})
file(READ ${interface} declarations)
string(REPLACE "  T fmul = 0;" "  virtual ~IkSingleDOFSolutionBase() = default;\n  T fmul = 0;"
               declarations "${declarations}")
string(REPLACE "  virtual void Clear() = 0;" "  virtual void Clear() = 0;\n  virtual void Print() = 0;"
               declarations "${declarations}")
file(CONFIGURE OUTPUT ${foreign}/late/ikfast.h CONTENT "${declarations}" @ONLY)

# Builds foreign/NAME/libik.so with these commands' words.
function(qal_foreign_solver name)
  set(source ${CMAKE_CURRENT_SOURCE_DIR}/abi/foreign_solver.cpp)
  set(library ${foreign}/${name}/libik.so)
  add_custom_command(
    OUTPUT ${library}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${foreign}/${name}
    COMMAND ${ARGN} -std=c++17 -fPIC -shared ${source} -o ${library}
    DEPENDS ${source} ${interface} VERBATIM)
  add_custom_target(qal_foreign_${name} ALL DEPENDS ${library})
endfunction()

foreach(compiler g++ clang++)
  string(REPLACE "++" "" name ${compiler})
  find_program(QAL_FOREIGN_${name} ${compiler})
  if(NOT QAL_FOREIGN_${name})
    message(STATUS "Foreign solvers: none by ${compiler}, which is not installed")
    continue()
  endif()
  foreach(level 0 3)
    set(solver ${name}_O${level})
    qal_foreign_solver(${solver} ${QAL_FOREIGN_${name}} -O${level} -I ${foreign})
    add_test(NAME Foreign.${solver}
             COMMAND ${CMAKE_COMMAND} -DCLIENT=$<TARGET_FILE:qal_foreign_test>
                     -DFOREIGN=${foreign}/${solver}/libik.so
                     -P ${CMAKE_CURRENT_SOURCE_DIR}/abi/foreign_solver.cmake)
    set_tests_properties(Foreign.${solver} PROPERTIES ENVIRONMENT GTEST_FILTER=-LateLayout.*)
  endforeach()
endforeach()

qal_foreign_solver(late ${CMAKE_CXX_COMPILER} -O2 -I ${foreign}/late)
add_test(NAME Foreign.LateLayout COMMAND qal_foreign_test)
set_tests_properties(Foreign.LateLayout PROPERTIES ENVIRONMENT
                     "GTEST_FILTER=LateLayout.*;LD_LIBRARY_PATH=${foreign}/late")

# What is missing shows when the library is loaded, not in the middle of a move.
qal_foreign_solver(without_forward ${CMAKE_CXX_COMPILER} -I ${foreign} -D QAL_WITHOUT_FORWARD)
add_test(NAME Foreign.WithoutForward COMMAND qal_foreign_test --gtest_list_tests)
set_tests_properties(
  Foreign.WithoutForward
  PROPERTIES ENVIRONMENT LD_LIBRARY_PATH=${foreign}/without_forward PASS_REGULAR_EXPRESSION
             "symbol lookup error: [^\n]*/libQAL_kinematics.so.1: undefined symbol: _ZN6ikfast9ComputeFk")
