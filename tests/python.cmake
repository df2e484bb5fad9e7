# Python's package, from the build tree and installed by pip.
foreach(module pytest numpy scipy tqdm distributed)
  execute_process(COMMAND ${Python_EXECUTABLE} -c "import ${module}" RESULT_VARIABLE failed ERROR_QUIET)
  if(failed)
    message(FATAL_ERROR "${module} is missing. Debian: sudo apt-get install python3-${module}")
  endif()
endforeach()

set(python ${CMAKE_COMMAND} -E env PYTHONPATH=${PROJECT_BINARY_DIR}/python PYTHONDONTWRITEBYTECODE=1
           QAL_ARMS=${PROJECT_SOURCE_DIR}/arms QAL_TOOL=$<TARGET_FILE:qal>
           QAL_LIBIK=$<TARGET_FILE:ik>)
add_test(NAME Python.Tests
         COMMAND ${python} ${Python_EXECUTABLE} -m pytest -q -p no:cacheprovider
                 ${CMAKE_CURRENT_SOURCE_DIR}/python)
add_test(NAME Python.InstallsByPip
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/python/install.sh ${Python_EXECUTABLE} ${PROJECT_SOURCE_DIR}
                 ${PROJECT_BINARY_DIR} ${CMAKE_CURRENT_BINARY_DIR}/python)
