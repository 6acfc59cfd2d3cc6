# Installs both libraries, their public headers and a CMake package.
include(CMakePackageConfigHelpers)

install(TARGETS QuorvixPlatform Quorvix EXPORT QuorvixTargets)
install(EXPORT QuorvixTargets NAMESPACE Quorvix:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quorvix)
install(FILES ${QUORVIX_PLATFORM_PUBLIC_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Platform)
install(FILES ${QUORVIX_PUBLIC_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Quorvix)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/QuorvixConfig.cmake.in
    ${PROJECT_BINARY_DIR}/QuorvixConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quorvix)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuorvixConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuorvixConfig.cmake ${PROJECT_BINARY_DIR}/QuorvixConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quorvix)
