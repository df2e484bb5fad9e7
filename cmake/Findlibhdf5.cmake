include(${CMAKE_CURRENT_LIST_DIR}/QalPlainLibrary.cmake)
# Debian keeps the one without MPI apart from others.
qal_find_plain_library(libhdf5 "hdf5_serial;hdf5" hdf5.h hdf5/serial)
