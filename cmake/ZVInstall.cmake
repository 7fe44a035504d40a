# Install rules: library, headers, tools, resources, CMake package and pkg-config file.
install(TARGETS ZVLib EXPORT ZVLibTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zvlib)
install(TARGETS ZVMovies LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/zvlib)
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zvlib FILES_MATCHING PATTERN "*.h")
install(EXPORT ZVLibTargets NAMESPACE ZVLib:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ZVLib)

configure_package_config_file(cmake/ZVLibConfig.cmake.in ${PROJECT_BINARY_DIR}/ZVLibConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ZVLib)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZVLibConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZVLibConfig.cmake ${PROJECT_BINARY_DIR}/ZVLibConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ZVLib)

# Relative, so that an installed tree can be moved.
file(RELATIVE_PATH ZV_PREFIX_FROM_PKGCONFIG /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/zvlib.pc.in ${PROJECT_BINARY_DIR}/zvlib.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zvlib.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
