# The code in README.md is an example that is built.
add_test(NAME Readme.ShowsTheFirstExample
         COMMAND bash -c "diff <(sed -n '/^```cpp/,/^```/{/^```/d;p}' README.md) examples/01_straight_line.cpp"
         WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})

# README's figures are those that were measured.
find_package(Python3 QUIET COMPONENTS Interpreter)
if(Python3_FOUND)
  add_test(NAME Readme.ShowsTheFiguresOfItsPerformance
           COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/docs/readme_figures.py --check)
endif()

# The installed tree, used from outside: by find_package, by pkg-config; and the source tree as a
# subdirectory, with a solver of the user's own.
# A sanitizer's library needs a sanitizer's program, so not there.
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize|--coverage")
  return()
endif()

set(consumer ${CMAKE_CURRENT_SOURCE_DIR}/package)
set(prefix ${CMAKE_CURRENT_BINARY_DIR}/package/prefix)

add_test(NAME Package.Installs
         COMMAND ${CMAKE_COMMAND} --install ${PROJECT_BINARY_DIR} --prefix ${prefix})
set_tests_properties(Package.Installs PROPERTIES FIXTURES_SETUP installed_tree)

# Configures, builds and runs the consumer.
function(qal_test_consumer name)
  set(binary_dir ${CMAKE_CURRENT_BINARY_DIR}/package/${name})
  add_test(NAME Package.WorksBy${name}
           COMMAND ${CMAKE_CTEST_COMMAND} --build-and-test ${consumer} ${binary_dir}
                   --build-generator ${CMAKE_GENERATOR} --build-options ${ARGN}
                   -DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER}
                   --test-command ${binary_dir}/consumer)
endfunction()

qal_test_consumer(FindPackage -DCMAKE_PREFIX_PATH=${prefix})
qal_test_consumer(AddSubdirectory -DQAL_SOURCE_DIR=${PROJECT_SOURCE_DIR}
                  -DQAL_IK_SOLVER=$<TARGET_FILE:ik> -DCMAKE_BUILD_TYPE=Debug
                  -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=30)
add_test(NAME Package.WorksByPkgConfig
         COMMAND ${consumer}/with_pkg_config.sh ${prefix} ${consumer}/consumer.cpp
                 ${CMAKE_CURRENT_BINARY_DIR}/package/with_pkg_config)
add_test(NAME Package.WorksByACompilerAlone
         COMMAND ${CMAKE_COMMAND} -E env CXX=${CMAKE_CXX_COMPILER} ${consumer}/plain.sh
                 ${PROJECT_SOURCE_DIR} $<TARGET_FILE_DIR:ik>
                 ${CMAKE_CURRENT_BINARY_DIR}/package/plain)
if(QAL_AARCH64_CXX AND QAL_AARCH64_EMULATOR)
  add_test(NAME Package.WorksOnAarch64
           COMMAND ${consumer}/cross.sh ${PROJECT_SOURCE_DIR}
                   ${PROJECT_SOURCE_DIR}/cmake/toolchains/aarch64-linux-gnu.cmake
                   ${CMAKE_CURRENT_BINARY_DIR}/package/aarch64)
  set_tests_properties(Package.WorksOnAarch64 PROPERTIES PROCESSORS 2)
endif()
if(QAL_BUILD_TOOLS)
  add_test(NAME Package.ToolsWork COMMAND ${consumer}/tools.sh ${prefix}
                                          ${CMAKE_CURRENT_BINARY_DIR}/package/tools)
  add_test(NAME Package.HasAManual COMMAND /usr/bin/python3 ${consumer}/manual.py
                                           ${prefix}/${CMAKE_INSTALL_MANDIR}/man1 ${prefix}/bin)
  foreach(shell bash zsh fish)
    add_test(NAME Package.CompletesCommandLines.${shell}
             COMMAND /usr/bin/python3 ${consumer}/completion.py ${shell} ${prefix}
                     ${CMAKE_CURRENT_BINARY_DIR}/package/completion_${shell})
    set_tests_properties(Package.CompletesCommandLines.${shell}
                         PROPERTIES FIXTURES_REQUIRED installed_tree)
  endforeach()
  set_tests_properties(Package.ToolsWork Package.HasAManual PROPERTIES FIXTURES_REQUIRED
                                                                       installed_tree)
  add_test(NAME Package.KnowsWhatItContains
           COMMAND ${consumer}/sbom.sh ${PROJECT_SOURCE_DIR}/packaging/sbom ${PROJECT_BINARY_DIR}
                   ${CMAKE_CURRENT_BINARY_DIR}/package/sbom.json)
endif()
set_tests_properties(Package.WorksByFindPackage Package.WorksByPkgConfig
                     PROPERTIES FIXTURES_REQUIRED installed_tree)

# Debian packages of this build's objects: built, checked by lintian, and used in an empty Debian. `make
# package-test` compiles them as they are shipped, twice.
find_program(QAL_DPKG_BUILDPACKAGE dpkg-buildpackage)
find_program(QAL_LINTIAN lintian)
find_program(QAL_MMDEBSTRAP mmdebstrap)
if(QAL_DPKG_BUILDPACKAGE AND QAL_LINTIAN AND QAL_MMDEBSTRAP AND QAL_BUILD_PYTHON
   AND CMAKE_BUILD_TYPE STREQUAL RelWithDebInfo AND NOT QAL_IK_SOLVER)
  set(debian ${CMAKE_CURRENT_BINARY_DIR}/package/debian)
  add_test(NAME Package.Debian.Builds COMMAND ${PROJECT_SOURCE_DIR}/packaging/debs ${debian}/built
                                              ${debian}/packages)
  set_tests_properties(
    Package.Debian.Builds
    PROPERTIES FIXTURES_SETUP debian_packages PROCESSORS 2
               ENVIRONMENT "QAL_BUILD_TYPE=${CMAKE_BUILD_TYPE};QAL_OBJECTS=${PROJECT_BINARY_DIR}")
  add_test(NAME Package.Debian.InstallsAndGoes COMMAND ${consumer}/debian.sh ${debian}/packages
                                                       ${debian}/cache)
  set_tests_properties(Package.Debian.InstallsAndGoes PROPERTIES FIXTURES_REQUIRED debian_packages
                                                                 SKIP_RETURN_CODE 77)
endif()
