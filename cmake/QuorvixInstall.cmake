# Installs what a program needs that links the library: the libraries, their public headers, a CMake package, files for
# pkg-config, the template for translations, and the documents.
#
# A shared and a static build may be installed in the same place. What differs between them has a name of its own, and
# what both install is the same in both: so the build that is installed last takes nothing from the other.
include(CMakePackageConfigHelpers)

set(QUORVIX_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/quorvix CACHE STRING "Where documents are installed")
set(QUORVIX_INSTALL_QMLDIR ${CMAKE_INSTALL_LIBDIR}/qt6/qml CACHE STRING
    "Where QML modules are installed, relative to the prefix; Qt finds them in its own folder only")
set(QUORVIX_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/Quorvix)
set(QUORVIX_INSTALL_PCDIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
# Of the object that makes a program need the library.
set(QUORVIX_INSTALL_LINKDIR ${CMAKE_INSTALL_LIBDIR}/quorvix/static)
if(BUILD_SHARED_LIBS)
    set(QUORVIX_INSTALL_LINKDIR ${CMAKE_INSTALL_LIBDIR}/quorvix/shared)
endif()

# Remembers, for the target "uninstall", which folders the installation is going to create: each folder of the list
# that does not exist yet, and those above it.
set(folders
    ${CMAKE_INSTALL_LIBDIR} ${QUORVIX_INSTALL_CMAKEDIR} ${QUORVIX_INSTALL_PCDIR}
    ${QUORVIX_INSTALL_DOCDIR}/docs/images/looks ${CMAKE_INSTALL_DATADIR}/quorvix/translations)
if(QUORVIX_ENABLED)
    # CMake chooses the name of this folder.
    set(objects objects/QuorvixQmlLink)
    if(CMAKE_BUILD_TYPE)
        set(objects objects-${CMAKE_BUILD_TYPE}/QuorvixQmlLink)
    endif()
    list(APPEND folders ${QUORVIX_INSTALL_QMLDIR}/Quorvix ${QUORVIX_INSTALL_LINKDIR}/${objects})
endif()
foreach(header IN LISTS QUORVIX_PUBLIC_HEADERS)
    quorvix_installed_folder(folder ${header})
    list(APPEND folders ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()
list(REMOVE_DUPLICATES folders)
set(QUORVIX_RECORD ${PROJECT_BINARY_DIR}/quorvix-installed.txt)
configure_file(${CMAKE_CURRENT_LIST_DIR}/QuorvixFolders.cmake.in ${PROJECT_BINARY_DIR}/QuorvixFolders.cmake @ONLY)
if(PROJECT_IS_TOP_LEVEL)
    install(SCRIPT ${PROJECT_BINARY_DIR}/QuorvixFolders.cmake ALL_COMPONENTS)
endif()

# Sets the variables to the names of Qt's modules, without Qt6::, and of the other packages, that a program needs to find
# when it links the target.
function(quorvix_needs target modules others)
    get_target_property(libraries ${target} INTERFACE_LINK_LIBRARIES)
    set(all "${libraries}")
    string(REGEX MATCHALL "Qt6::[A-Za-z0-9]+" qt "${all}")
    list(TRANSFORM qt REPLACE "Qt6::" "")
    list(REMOVE_DUPLICATES qt)
    set(${modules} "${qt}" PARENT_SCOPE)
    string(REGEX MATCHALL "(simdjson|QuorvixCodings)::" packages "${all}")
    list(TRANSFORM packages REPLACE "::" "")
    list(REMOVE_DUPLICATES packages)
    set(${others} "${packages}" PARENT_SCOPE)
endfunction()

# Installs a component of the package: one library, with files in the CMake package that bear its name and kind.
#   quorvix_install_component(<component> <target> <installed component>)
function(quorvix_install_component component target installed)
    get_target_property(type ${target} TYPE)
    set(kind static)
    if(type STREQUAL "SHARED_LIBRARY")
        set(kind shared)
    endif()
    install(TARGETS ${target} EXPORT Quorvix${component}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${installed} NAMELINK_COMPONENT quorvix-dev
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT quorvix-dev
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${installed})
    install(EXPORT Quorvix${component}
        NAMESPACE Quorvix::
        FILE Quorvix${component}-${kind}.cmake
        DESTINATION ${QUORVIX_INSTALL_CMAKEDIR}
        COMPONENT quorvix-dev)

    quorvix_needs(${target} qt others)
    # The export includes all files whose names begin with its own, so this one begins differently.
    set(needs QuorvixNeeds-${component}-${kind}.cmake)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/${needs} @ONLY CONTENT
        "set(_quorvix_qt @qt@)\nset(_quorvix_others @others@)\n")
    install(FILES ${PROJECT_BINARY_DIR}/${needs} DESTINATION ${QUORVIX_INSTALL_CMAKEDIR} COMPONENT quorvix-dev)
endfunction()

quorvix_install_component(NoOp QuorvixNoOp quorvix-dev)
if(QUORVIX_ENABLED)
    quorvix_install_component(Core QuorvixCore quorvix-core)
    quorvix_install_component(Screens Quorvix quorvix-screens)
    install(TARGETS QuorvixQmlLink EXPORT QuorvixScreens
        OBJECTS DESTINATION ${QUORVIX_INSTALL_LINKDIR} COMPONENT quorvix-dev)
    # The QML module is in the library. These files tell tools such as qmllint what is in it, and load it into programs
    # that do not link it. A static build has nothing to load, and leaves the files of a shared one alone.
    set(module ${PROJECT_BINARY_DIR}/qml/Quorvix/qmldir ${PROJECT_BINARY_DIR}/qml/Quorvix/Quorvix.qmltypes)
    if(TARGET QuorvixQmlPlugin)
        install(FILES ${module} DESTINATION ${QUORVIX_INSTALL_QMLDIR}/Quorvix COMPONENT quorvix-qml)
        file(RELATIVE_PATH libraries /${QUORVIX_INSTALL_QMLDIR}/Quorvix /${CMAKE_INSTALL_LIBDIR})
        string(REGEX REPLACE "/$" "" libraries "${libraries}")
        set_target_properties(QuorvixQmlPlugin PROPERTIES INSTALL_RPATH $ORIGIN/${libraries})
        install(TARGETS QuorvixQmlPlugin DESTINATION ${QUORVIX_INSTALL_QMLDIR}/Quorvix COMPONENT quorvix-qml)
    else()
        list(JOIN module "\" \"" files)
        install(CODE "
            set(folder \"\${CMAKE_INSTALL_PREFIX}/${QUORVIX_INSTALL_QMLDIR}/Quorvix\")
            file(GLOB plugins \"\$ENV{DESTDIR}\${folder}/*QuorvixQmlPlugin*\")
            if(NOT plugins)
                file(INSTALL \"${files}\" DESTINATION \"\${folder}\")
            endif()"
            COMPONENT quorvix-qml)
    endif()
endif()

foreach(header IN LISTS QUORVIX_PUBLIC_HEADERS)
    quorvix_installed_folder(folder ${header})
    install(FILES ${PROJECT_SOURCE_DIR}/${header}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder}
        COMPONENT quorvix-dev)
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/translations/quorvix.ts
    DESTINATION ${CMAKE_INSTALL_DATADIR}/quorvix/translations
    COMPONENT quorvix-dev)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
        ${PROJECT_SOURCE_DIR}/SECURITY.md
    DESTINATION ${QUORVIX_INSTALL_DOCDIR}
    COMPONENT quorvix-dev)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs
    DESTINATION ${QUORVIX_INSTALL_DOCDIR}
    COMPONENT quorvix-dev
    FILES_MATCHING PATTERN *.md PATTERN *.png)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/QuorvixConfig.cmake.in
    ${PROJECT_BINARY_DIR}/QuorvixConfig.cmake
    INSTALL_DESTINATION ${QUORVIX_INSTALL_CMAKEDIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuorvixConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/QuorvixConfig.cmake ${PROJECT_BINARY_DIR}/QuorvixConfigVersion.cmake
    ${CMAKE_CURRENT_LIST_DIR}/FindQuorvixCodings.cmake
    DESTINATION ${QUORVIX_INSTALL_CMAKEDIR}
    COMPONENT quorvix-dev)

include(QuorvixPkgConfig)

if(PROJECT_IS_TOP_LEVEL)
    if(QUORVIX_ENABLED)
        include(QuorvixDebian)
    endif()
    # Comes after everything that installs, because it records that.
    configure_file(${CMAKE_CURRENT_LIST_DIR}/QuorvixRecord.cmake.in ${PROJECT_BINARY_DIR}/QuorvixRecord.cmake @ONLY)
    install(SCRIPT ${PROJECT_BINARY_DIR}/QuorvixRecord.cmake ALL_COMPONENTS)
    add_custom_target(uninstall
        COMMAND ${CMAKE_COMMAND} -D RECORD=${QUORVIX_RECORD} -P ${CMAKE_CURRENT_LIST_DIR}/QuorvixUninstall.cmake
        COMMENT "Removing what has been installed from this build tree"
        VERBATIM)
endif()
