# What `cmake --install` puts under a prefix, and the package a user's build
# finds there:
#
#   lib/            libvel.so (the platform), libBfIngressMirrorLagGroup.so
#                   (the plug-in), libchipsim.so (the software chip)
#   bin/            chipsim, mirrorlag-agent, mirrorlagctl
#   include/mirrorlag/
#                   the platform's components, the plug-in's headers,
#                   chipsim/chipsim.h and the PD header
#   lib/cmake/mirrorlag/
#                   find_package(mirrorlag CONFIG) with the targets
#                   mirrorlag::vel, mirrorlag::plugin and mirrorlag::chipsim
#
# CPack makes a Debian package of the same tree (cpack -G DEB in the build
# directory).

include(CMakePackageConfigHelpers)

set(MIRRORLAG_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/mirrorlag)

# Installed programs find the libraries beside them; the agent also opens the
# plug-in and the PD library by file name from there.
set_target_properties(vel BfIngressMirrorLagGroup chipsim PROPERTIES INSTALL_RPATH "$ORIGIN")
set_target_properties(chipsim_cli mirrorlag-agent mirrorlagctl
                      PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

install(TARGETS vel BfIngressMirrorLagGroup chipsim EXPORT mirrorlagTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${MIRRORLAG_INSTALL_INCLUDEDIR})
install(TARGETS chipsim_cli mirrorlag-agent mirrorlagctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

foreach(component IN LISTS MIRRORLAG_PLATFORM_COMPONENTS)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/${component}/
          DESTINATION ${MIRRORLAG_INSTALL_INCLUDEDIR}/${component} FILES_MATCHING PATTERN "*.h")
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/BfIngressMirrorLagGroup/
        DESTINATION ${MIRRORLAG_INSTALL_INCLUDEDIR}/BfIngressMirrorLagGroup
        FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_SOURCE_DIR}/chipsim/chipsim.h
        DESTINATION ${MIRRORLAG_INSTALL_INCLUDEDIR}/chipsim)

install(EXPORT mirrorlagTargets NAMESPACE mirrorlag:: DESTINATION ${MIRRORLAG_INSTALL_CMAKEDIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/mirrorlagConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/mirrorlagConfig.cmake
                              INSTALL_DESTINATION ${MIRRORLAG_INSTALL_CMAKEDIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/mirrorlagConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/mirrorlagConfig.cmake
              ${PROJECT_BINARY_DIR}/mirrorlagConfigVersion.cmake
        DESTINATION ${MIRRORLAG_INSTALL_CMAKEDIR})

set(CPACK_PACKAGE_NAME mirrorlag)
set(CPACK_PACKAGE_VENDOR "mirrorlag")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Mirror-session LAG table plug-in for a switch agent, with its platform, software chip and reference agent")
set(CPACK_PACKAGE_CONTACT "mirrorlag developers <mirrorlag@localhost>")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
# The package's dependencies are read from what its programs and libraries link.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/platform
    ${PROJECT_BINARY_DIR}/BfIngressMirrorLagGroup ${PROJECT_BINARY_DIR}/chipsim)
include(CPack)
