# What every target of this project has in common.

add_library(qal_build_options INTERFACE)
target_compile_features(qal_build_options INTERFACE cxx_std_17)
target_compile_options(
  qal_build_options
  INTERFACE -Wall -Wextra -Wconversion -Wshadow
            # No fused multiply-add: results are the same on every processor.
            -ffp-contract=off
            # A square root is one instruction; nobody looks at errno after it.
            -fno-math-errno
            $<$<BOOL:${QAL_WARNINGS_AS_ERRORS}>:-Werror>)

# Only what the linker map names leaves a library.
function(qal_export_only target map)
  set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden
                                             VISIBILITY_INLINES_HIDDEN ON LINK_DEPENDS ${map})
  target_link_options(${target} PRIVATE -Wl,--version-script=${map})
endfunction()

# Finds a package that the machine has to have, or says how to get it.
macro(qal_require package debian)
  find_package(${package} QUIET)
  if(NOT ${package}_FOUND)
    message(FATAL_ERROR "${package} is missing. Debian: sudo apt-get install ${debian}")
  endif()
endmacro()
