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
            # What is built is the same in every folder, but for a debug build, whose debugger looks
            # for the sources.
            $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>
            $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${PROJECT_BINARY_DIR}=.>
            $<$<BOOL:${QAL_WARNINGS_AS_ERRORS}>:-Werror>)

# Programs and libraries are bound as a whole when loaded, and their tables are read-only from then on;
# the C library checks the sizes that the compiler knows, where a sanitizer doesn't see to that.
target_link_options(qal_build_options INTERFACE -Wl,-z,relro,-z,now)
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  target_compile_options(qal_build_options INTERFACE $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE>
                                                     $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()

# For what reads files and what works in place of anybody's solver: an overrun stack ends the process.
# Not in the libraries, where that would be up to 0.6 % of the instructions.
add_library(qal_hardened_options INTERFACE)
target_link_libraries(qal_hardened_options INTERFACE qal_build_options)
target_compile_options(qal_hardened_options INTERFACE -fstack-protector-strong)

# Only what the linker map names leaves a library; and it is bound as a whole when loaded: a solver
# that lacks a function is refused there and then, not when the arm moves.
function(qal_export_only target map)
  set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden
                                             VISIBILITY_INLINES_HIDDEN ON LINK_DEPENDS ${map})
  target_link_options(${target} PRIVATE -Wl,--version-script=${map} -Wl,-z,relro,-z,now)
endfunction()

# Both where it is built and where it is installed, what `target` needs is found from where it lies.
function(qal_find_libraries_at target)
  list(REMOVE_DUPLICATES ARGN)
  set_target_properties(${target} PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "${ARGN}")
  target_link_options(${target} PRIVATE -Wl,--enable-new-dtags)
endfunction()
