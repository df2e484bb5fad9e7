# Packages that the machine has to have.

list(APPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR})

# Finds a package, or says how to get it.
macro(qal_require package debian)
  find_package(${package} QUIET)
  if(NOT ${package}_FOUND)
    message(FATAL_ERROR "${package} is missing. Debian: sudo apt-get install ${debian}")
  endif()
endmacro()

# The tools' packages, each with Debian's name for it. The libraries need none.
set(QAL_TOOL_PACKAGES
    CLI11=libcli11-dev
    Eigen3=libeigen3-dev
    fmt=libfmt-dev
    libelf=libelf-dev
    libhdf5=libhdf5-dev
    libyaml=libyaml-dev
    nlohmann_json=nlohmann-json3-dev
    tinyxml2=libtinyxml2-dev
    tomlplusplus=libtomlplusplus-dev)

# Python's module needs these besides, the interpreter and its headers (python3-dev) apart.
set(QAL_PYTHON_PACKAGES pybind11=pybind11-dev)

# Finds packages; `result`: which of them are missing and how to get them, or empty.
macro(qal_find_packages result)
  set(missing "")
  set(missing_debian "")
  foreach(entry ${ARGN})
    string(REPLACE "=" ";" entry ${entry})
    list(GET entry 0 package)
    list(GET entry 1 debian)
    find_package(${package} QUIET)
    if(NOT ${package}_FOUND)
      list(APPEND missing ${package})
      string(APPEND missing_debian " ${debian}")
    endif()
  endforeach()
  list(JOIN missing ", " ${result})
  if(missing)
    string(APPEND ${result} " missing (Debian: apt-get install${missing_debian})")
  endif()
endmacro()

# Sets `option` to OFF where `missing` says that something is; that is an error where it is ON.
macro(qal_leave_out option what missing)
  if(NOT ${option} STREQUAL AUTO)
    message(FATAL_ERROR "${option}=${${option}}, but ${missing}")
  endif()
  message(STATUS "${what} left out: ${missing}. -D${option}=ON makes it an error.")
  set(${option} OFF)
endmacro()

set(auto OFF)
if(PROJECT_IS_TOP_LEVEL)
  set(auto AUTO)
endif()
set(QAL_BUILD_TOOLS ${auto} CACHE STRING
    "Build the command-line tools: ON, OFF, or AUTO, when their packages are there")
set(QAL_BUILD_PYTHON ${auto} CACHE STRING
    "Build Python's module: ON, OFF, or AUTO, with the tools and when its packages are there")
set_property(CACHE QAL_BUILD_TOOLS QAL_BUILD_PYTHON PROPERTY STRINGS AUTO ON OFF)

if(QAL_BUILD_TOOLS)
  qal_find_packages(missing ${QAL_TOOL_PACKAGES})
  if(missing)
    qal_leave_out(QAL_BUILD_TOOLS Tools "${missing}")
  endif()
endif()

# A sanitizer's library needs a sanitizer's interpreter.
if(QAL_BUILD_PYTHON STREQUAL AUTO AND (NOT QAL_BUILD_TOOLS OR CMAKE_CXX_FLAGS MATCHES
                                                              "-fsanitize|--coverage"))
  set(QAL_BUILD_PYTHON OFF)
endif()
if(QAL_BUILD_PYTHON)
  # Debian's packages are those of Debian's interpreter, whatever else comes first in PATH.
  if(NOT Python_EXECUTABLE AND EXISTS /usr/bin/python3)
    set(Python_EXECUTABLE /usr/bin/python3)
  endif()
  find_package(Python 3.9 QUIET COMPONENTS Interpreter Development.Module)
  set(PYBIND11_NOPYTHON ON)
  qal_find_packages(missing ${QAL_PYTHON_PACKAGES})
  if(NOT QAL_BUILD_TOOLS)
    set(missing "it reads files as the tools do: QAL_BUILD_TOOLS is OFF")
  elseif(NOT Python_FOUND)
    set(missing "Python's headers missing (Debian: apt-get install python3-dev)")
  endif()
  if(missing)
    qal_leave_out(QAL_BUILD_PYTHON "Python's module" "${missing}")
  endif()
endif()
