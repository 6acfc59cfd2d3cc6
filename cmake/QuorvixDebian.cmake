# Packages for Debian, made by `cmake --preset deb`, `cmake --build --preset deb` and `cpack --preset deb`: a package for
# each shared library, and one with all that a developer needs. Debian names a library's package after the library and
# its version, so that programs of two versions can be installed side by side.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The Quorvix authors")
set(CPACK_PACKAGE_CONTACT "The Quorvix authors <quorvix@localhost>" CACHE STRING "Maintainer of the packages")
# Each package has a description of its own; CPack would put this one before it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}")

# quorvix_debian_package(<installed component> <package> SECTION <section> SUMMARY <text> DESCRIPTION <text>
#                        [DEPENDS <package>...] [COMPONENTS <installed component>...])
macro(quorvix_debian_package component package)
    cmake_parse_arguments(deb "" "SECTION;SUMMARY;DESCRIPTION" "DEPENDS;COMPONENTS" ${ARGN})
    string(TOUPPER ${component} deb_key)
    list(JOIN deb_DEPENDS ", " deb_DEPENDS)
    set(CPACK_DEBIAN_${deb_key}_PACKAGE_NAME ${package})
    set(CPACK_DEBIAN_${deb_key}_PACKAGE_SECTION ${deb_SECTION})
    set(CPACK_DEBIAN_${deb_key}_PACKAGE_DEPENDS "${deb_DEPENDS}")
    set(CPACK_DEBIAN_${deb_key}_DESCRIPTION "${deb_SUMMARY}\n${deb_DESCRIPTION}")
    set(CPACK_COMPONENT_${deb_key}_DEPENDS ${deb_COMPONENTS})
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    # Only packages have this file.
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package}
        RENAME copyright
        COMPONENT ${component}
        EXCLUDE_FROM_ALL)
endmacro()

set(CPACK_COMPONENTS_ALL "")
set(deb_libraries "")
if(BUILD_SHARED_LIBS)
    set(deb_libraries quorvix-core quorvix-screens quorvix-qml)
    set(deb_version ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
    quorvix_debian_package(quorvix-core libquorvixcore${deb_version}
        SECTION libs
        SUMMARY "In-app HTTP inspector for Qt 6 applications: the core"
        DESCRIPTION "A program that links this library captures its own HTTP exchanges, finds them, and exports them as an HTTP Archive. It needs no display.")
    quorvix_debian_package(quorvix-screens libquorvix${deb_version}
        SECTION libs
        SUMMARY "In-app HTTP inspector for Qt 6 applications"
        DESCRIPTION "A program that links this library shows its own HTTP exchanges over its window: a list, details, JSON trees, breakpoints and exports."
        # Only QML imports them, so that no program finds out by itself.
        DEPENDS qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript qml6-module-qtquick
            qml6-module-qtquick-templates qml6-module-qtquick-window
        COMPONENTS quorvix-core)
    quorvix_debian_package(quorvix-qml qml6-module-quorvix
        SECTION libs
        SUMMARY "In-app HTTP inspector for Qt 6 applications: the QML module"
        DESCRIPTION "Programs in QML that do not link the inspector's library import it from here."
        COMPONENTS quorvix-screens)
    foreach(component IN ITEMS CORE SCREENS QML)
        set(CPACK_DEBIAN_QUORVIX-${component}_PACKAGE_SHLIBDEPS ON)
    endforeach()
endif()
# The no-op library is always static, so what it links is always needed.
set(deb_needs qt6-base-dev qt6-declarative-dev zlib1g-dev libbrotli-dev libzstd-dev)
if(NOT BUILD_SHARED_LIBS)
    list(APPEND deb_needs qt6-svg-dev libsimdjson-dev)
endif()
quorvix_debian_package(quorvix-dev libquorvix-dev
    SECTION libdevel
    SUMMARY "In-app HTTP inspector for Qt 6 applications: development files"
    DESCRIPTION "The headers, the CMake package, files for pkg-config, the template for translations, and the documents."
    DEPENDS ${deb_needs}
    COMPONENTS ${deb_libraries})

include(CPack)
