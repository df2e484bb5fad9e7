include(${CMAKE_CURRENT_LIST_DIR}/QalPlainLibrary.cmake)
qal_find_plain_library(libyaml yaml yaml.h)
