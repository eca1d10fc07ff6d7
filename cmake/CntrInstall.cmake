include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS foundation cntr EXPORT cntrTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT cntrTargets NAMESPACE cntr:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/cntr)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/cntrConfig.cmake.in
    ${PROJECT_BINARY_DIR}/cntrConfig.cmake INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/cntr)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/cntrConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/cntrConfig.cmake ${PROJECT_BINARY_DIR}/cntrConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/cntr)
