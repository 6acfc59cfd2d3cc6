# Installs both libraries, their public headers, the template for translations and a CMake package.
include(CMakePackageConfigHelpers)

install(TARGETS QuorvixNoOp EXPORT QuorvixNoOpTargets)
install(EXPORT QuorvixNoOpTargets NAMESPACE Quorvix:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quorvix)
if(QUORVIX_ENABLED)
    install(TARGETS QuorvixCore Quorvix EXPORT QuorvixTargets)
    install(TARGETS QuorvixQmlLink EXPORT QuorvixTargets OBJECTS DESTINATION ${CMAKE_INSTALL_LIBDIR}/quorvix)
    install(EXPORT QuorvixTargets NAMESPACE Quorvix:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quorvix)
endif()
foreach(header IN LISTS QUORVIX_PUBLIC_HEADERS)
    quorvix_installed_folder(folder ${header})
    install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()

# The QML module is in the library. These files tell tools such as qmllint what is in it, and load it into programs that
# do not link it.
if(QUORVIX_ENABLED)
    set(QUORVIX_INSTALL_QMLDIR ${CMAKE_INSTALL_LIBDIR}/qt6/qml CACHE STRING
        "Where QML modules are installed, relative to the prefix; Qt finds them in its own folder only")
    install(FILES ${PROJECT_BINARY_DIR}/qml/Quorvix/qmldir ${PROJECT_BINARY_DIR}/qml/Quorvix/Quorvix.qmltypes
        DESTINATION ${QUORVIX_INSTALL_QMLDIR}/Quorvix)
    if(TARGET QuorvixQmlPlugin)
        file(RELATIVE_PATH libraries /${QUORVIX_INSTALL_QMLDIR}/Quorvix /${CMAKE_INSTALL_LIBDIR})
        string(REGEX REPLACE "/$" "" libraries "${libraries}")
        set_target_properties(QuorvixQmlPlugin PROPERTIES INSTALL_RPATH $ORIGIN/${libraries})
        install(TARGETS QuorvixQmlPlugin DESTINATION ${QUORVIX_INSTALL_QMLDIR}/Quorvix)
    endif()
endif()
install(FILES ${PROJECT_SOURCE_DIR}/translations/quorvix.ts
    DESTINATION ${CMAKE_INSTALL_DATADIR}/quorvix/translations)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/QuorvixConfig.cmake.in
    ${PROJECT_BINARY_DIR}/QuorvixConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quorvix)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuorvixConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuorvixConfig.cmake ${PROJECT_BINARY_DIR}/QuorvixConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quorvix)
