# The installed tree: headers, libraries, CMake package, pkg-config file.

include(CMakePackageConfigHelpers)
set(QAL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/QAL_kinematics)

install(TARGETS QAL_kinematics EXPORT QAL_kinematics_targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(PROGRAMS ${QAL_SOLVER_FILE} DESTINATION ${CMAKE_INSTALL_LIBDIR} RENAME libik.so)
install(FILES src/core/export.h src/core/pos.h src/core/roadpoint.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/QAL_kinematics/core)
install(FILES src/kinematics/ikfast.h src/kinematics/ikfunc.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/QAL_kinematics/kinematics)
install(DIRECTORY solver/closed_form DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/QAL_kinematics/solver)
install(DIRECTORY arms DESTINATION ${CMAKE_INSTALL_DATADIR}/QAL_kinematics)

install(EXPORT QAL_kinematics_targets NAMESPACE QAL:: DESTINATION ${QAL_CMAKE_DIR})
configure_package_config_file(packaging/QAL_kinematicsConfig.cmake.in QAL_kinematicsConfig.cmake
                              INSTALL_DESTINATION ${QAL_CMAKE_DIR})
write_basic_package_version_file(QAL_kinematicsConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
# The .pc file finds its prefix from where it lies, so that the tree can be moved.
file(RELATIVE_PATH QAL_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" QAL_PC_PREFIX "${QAL_PC_PREFIX}")
configure_file(packaging/QAL_kinematics.pc.in QAL_kinematics.pc @ONLY)
configure_file(packaging/qal.pc.in qal.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/QAL_kinematicsConfig.cmake
              ${PROJECT_BINARY_DIR}/QAL_kinematicsConfigVersion.cmake DESTINATION ${QAL_CMAKE_DIR})
install(FILES ${PROJECT_BINARY_DIR}/QAL_kinematics.pc ${PROJECT_BINARY_DIR}/qal.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
