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
    libyaml=libyaml-dev
    nlohmann_json=nlohmann-json3-dev
    tinyxml2=libtinyxml2-dev
    tomlplusplus=libtomlplusplus-dev)

set(tools OFF)
if(PROJECT_IS_TOP_LEVEL)
  set(tools AUTO)
endif()
set(QAL_BUILD_TOOLS ${tools} CACHE STRING
    "Build the command-line tools: ON, OFF, or AUTO, when their packages are there")
set_property(CACHE QAL_BUILD_TOOLS PROPERTY STRINGS AUTO ON OFF)

if(QAL_BUILD_TOOLS)
  set(missing "")
  set(missing_debian "")
  foreach(entry ${QAL_TOOL_PACKAGES})
    string(REPLACE "=" ";" entry ${entry})
    list(GET entry 0 package)
    list(GET entry 1 debian)
    find_package(${package} QUIET)
    if(NOT ${package}_FOUND)
      list(APPEND missing ${package})
      string(APPEND missing_debian " ${debian}")
    endif()
  endforeach()
  if(missing)
    list(JOIN missing ", " missing)
    set(missing "${missing} missing (Debian: apt-get install${missing_debian})")
    if(NOT QAL_BUILD_TOOLS STREQUAL AUTO)
      message(FATAL_ERROR "QAL_BUILD_TOOLS=${QAL_BUILD_TOOLS}, but ${missing}")
    endif()
    message(STATUS "Tools left out: ${missing}. -DQAL_BUILD_TOOLS=ON makes it an error.")
    set(QAL_BUILD_TOOLS OFF)
  endif()
endif()
