# How it builds: on other machines, in other folders, by other hands.
set(build ${CMAKE_CURRENT_SOURCE_DIR}/build)
set(build_dir ${CMAKE_CURRENT_BINARY_DIR}/build)

list(TRANSFORM QAL_TOOL_PACKAGES REPLACE "(.+)=.+" "-DCMAKE_DISABLE_FIND_PACKAGE_\\1=ON"
     OUTPUT_VARIABLE hidden)
list(TRANSFORM QAL_TOOL_PACKAGES REPLACE ".+=" "" OUTPUT_VARIABLE packages)
list(JOIN packages " " packages)
add_test(NAME Build.LeavesOutToolsWithoutTheirPackages
         COMMAND ${CMAKE_COMMAND} -DSOURCE=${PROJECT_SOURCE_DIR} -DBINARY=${build_dir}/bare
                 -DCOMPILER=${CMAKE_CXX_COMPILER} "-DHIDDEN=${hidden}" "-DPACKAGES=${packages}"
                 -P ${build}/without_packages.cmake)

foreach(header kinematics/ikfunc kinematics/ikfast qal/model/pose)
  add_test(NAME Build.SaysThatItNeedsCxx17.${header}
           COMMAND ${CMAKE_CXX_COMPILER} -std=c++14 -fsyntax-only -x c++
                   ${PROJECT_SOURCE_DIR}/src/${header}.h)
  set_tests_properties(Build.SaysThatItNeedsCxx17.${header}
                       PROPERTIES PASS_REGULAR_EXPRESSION "error: [^\n]*needs C\\+\\+17 or later")
endforeach()

# What the loader is told: no folder but those beside the file itself.
add_test(NAME Build.LibrariesAreFoundFromWhereTheFileLies
         COMMAND ${CMAKE_COMMAND} -DBINARY=${PROJECT_BINARY_DIR} -P ${build}/runpath.cmake)

# Files as they are hardened: `symbols` are the C library's that show it.
function(qal_test_hardening name symbols)
  add_test(NAME Build.IsHardened.${name}
           COMMAND ${CMAKE_COMMAND} "-DFILES=${ARGN}" "-DSYMBOLS=${symbols}"
                   "-DFOLDERS=${PROJECT_SOURCE_DIR};${PROJECT_BINARY_DIR}" -P ${build}/hardened.cmake)
endfunction()

# Sanitizers and coverage write paths of their own; a debug build is meant to have them.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize|--coverage" AND NOT CMAKE_BUILD_TYPE STREQUAL Debug)
  qal_test_hardening(Libraries "" $<TARGET_FILE:QAL_kinematics> $<TARGET_FILE:qal_shared>)
  set(solvers $<TARGET_FILE:ik>)
  if(QAL_BUILD_TOOLS)
    list(APPEND solvers ${CMAKE_CURRENT_BINARY_DIR}/qal/bench_spherical/libik.so)
    qal_test_hardening(Tools "__stack_chk_fail;__(read|poll|mem[a-z]+|v?[fs]n?printf|str[a-z]+)_chk"
                       $<TARGET_FILE:qal> $<TARGET_FILE:mkik> $<TARGET_FILE:ikcheck>)
  endif()
  qal_test_hardening(Solvers "__stack_chk_fail" ${solvers})
  add_test(
    NAME Build.IsTheSameInAnotherFolder
    COMMAND
      ${CMAKE_COMMAND} -DSOURCE=${PROJECT_SOURCE_DIR} -DBINARY=${PROJECT_BINARY_DIR}
      -DELSEWHERE=${build_dir}/elsewhere -DCOMPILER=${CMAKE_CXX_COMPILER}
      "-DFLAGS=${CMAKE_CXX_FLAGS}" -DBUILD_TYPE=${CMAKE_BUILD_TYPE}
      -DWARNINGS_AS_ERRORS=${QAL_WARNINGS_AS_ERRORS} -DIK_SOLVER=${QAL_IK_SOLVER} -P
      ${build}/same_bytes.cmake)
  set_tests_properties(Build.IsTheSameInAnotherFolder PROPERTIES PROCESSORS 2)
endif()
