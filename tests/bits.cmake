# The same bits on every processor: digests of the operations' results, here and on another one.
add_executable(qal_bits bits/bits.cpp ${PROJECT_SOURCE_DIR}/solver/reference_solver.cpp)
target_include_directories(qal_bits PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(qal_bits PRIVATE qal_build_options QAL_kinematics)
# Its solver takes the place of libik.so's, which may be anybody's.
set_target_properties(qal_bits PROPERTIES ENABLE_EXPORTS ON)

# Compares what the program prints with what the command THERE... prints.
function(qal_test_bits name)
  add_test(NAME Bits.${name} COMMAND ${CMAKE_COMMAND} -DHERE=$<TARGET_FILE:qal_bits> "-DTHERE=${ARGN}"
                                     -P ${CMAKE_CURRENT_SOURCE_DIR}/bits/compare.cmake)
endfunction()

# The bits as they are. Where they are meant to change, and the changelog says so:
#   build/dev/bin/qal_bits 2>/dev/null | grep ^same >tests/bits/kept.txt
qal_test_bits(AsKept ${CMAKE_COMMAND} -E cat ${CMAKE_CURRENT_SOURCE_DIR}/bits/kept.txt)

if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  # A processor as old as can be, to the C library.
  qal_test_bits(WithoutFma ${CMAKE_COMMAND} -E env
                GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2,-FMA,-FMA4,-AVX $<TARGET_FILE:qal_bits>)
  set_tests_properties(Bits.WithoutFma PROPERTIES SKIP_REGULAR_EXPRESSION "every family is the same")
endif()

find_program(QAL_AARCH64_CXX aarch64-linux-gnu-g++)
find_program(QAL_AARCH64_EMULATOR qemu-aarch64)
if(NOT QAL_AARCH64_CXX OR NOT QAL_AARCH64_EMULATOR)
  message(STATUS "Bits on aarch64: not tested, compiler or emulator missing "
                 "(Debian: apt-get install g++-aarch64-linux-gnu qemu-user)")
  return()
endif()
file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/core/*.cpp
     ${PROJECT_SOURCE_DIR}/src/kinematics/*/*.cpp)
list(APPEND sources ${PROJECT_SOURCE_DIR}/solver/reference_solver.cpp
     ${CMAKE_CURRENT_SOURCE_DIR}/bits/bits.cpp)
set(there ${CMAKE_CURRENT_BINARY_DIR}/aarch64)
file(MAKE_DIRECTORY ${there})
set(objects "")
foreach(source ${sources})
  get_filename_component(object ${source} NAME)
  set(object ${there}/${object}.o)
  add_custom_command(
    OUTPUT ${object}
    COMMAND ${QAL_AARCH64_CXX} -std=c++17 -O2
            "$<TARGET_PROPERTY:qal_build_options,INTERFACE_COMPILE_OPTIONS>"
            -I ${PROJECT_SOURCE_DIR}/src -MD -MF ${object}.d -MT ${object} -c ${source} -o ${object}
    DEPENDS ${source}
    DEPFILE ${object}.d COMMAND_EXPAND_LISTS VERBATIM)
  list(APPEND objects ${object})
endforeach()
add_custom_command(OUTPUT ${there}/bits COMMAND ${QAL_AARCH64_CXX} -static ${objects} -o ${there}/bits
                   DEPENDS ${objects} VERBATIM)
add_custom_target(qal_bits_aarch64 ALL DEPENDS ${there}/bits)
qal_test_bits(Aarch64 ${QAL_AARCH64_EMULATOR} ${there}/bits)
