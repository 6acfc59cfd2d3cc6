# Files for pkg-config. A static library has a file of its own, quorvix-static or quorvix-core-static: beside a shared
# library, the linker would take that one for "-lQuorvix", whatever pkg-config was asked for.
#
# The paths in the files begin where the file lies, so that the installation can be moved.

# Sets the variable to the installed folder, below the prefix of the file.
function(quorvix_pc_folder variable folder)
    if(IS_ABSOLUTE "${folder}")
        set(${variable} "${folder}" PARENT_SCOPE)
    else()
        set(${variable} "\${prefix}/${folder}" PARENT_SCOPE)
    endif()
endfunction()

if(IS_ABSOLUTE "${QUORVIX_INSTALL_PCDIR}")
    set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
else()
    file(RELATIVE_PATH pc_prefix "/prefix/${QUORVIX_INSTALL_PCDIR}" "/prefix")
    string(REGEX REPLACE "/$" "" pc_prefix "\${pcfiledir}/${pc_prefix}")
endif()
quorvix_pc_folder(pc_libdir "${CMAKE_INSTALL_LIBDIR}")
quorvix_pc_folder(pc_includedir "${CMAKE_INSTALL_INCLUDEDIR}")

# Sets the variable to what a target asks of those that link it, as words of a command line.
function(quorvix_pc_flags variable target property prefix)
    get_target_property(values ${target} ${property})
    if(NOT values)
        set(values "")
    endif()
    # What differs on other systems is a generator expression.
    list(TRANSFORM values GENEX_STRIP)
    list(TRANSFORM values REPLACE "^LINKER:" "-Wl,")
    list(TRANSFORM values PREPEND "${prefix}")
    list(JOIN values " " values)
    set(${variable} "${values}" PARENT_SCOPE)
endfunction()

# quorvix_pkg_config(<name> <target> <description> [REQUIRES <package>...] [BEFORE <word>...])
# The words BEFORE precede the library on the command line of the linker.
function(quorvix_pkg_config name target description)
    cmake_parse_arguments(PARSE_ARGV 3 pc "" "" "REQUIRES;BEFORE")
    get_target_property(type ${target} TYPE)
    set(pc_name ${name})
    set(pc_description "${description}")
    set(pc_libs "-L\${libdir} -l${target}")
    quorvix_needs(${target} qt others)
    if(type STREQUAL "STATIC_LIBRARY")
        # Named by its path: the linker prefers a shared library of the same name.
        set(pc_libs "\${libdir}/lib${target}.a")
        # There is only one kind of the no-op library.
        if(NOT target STREQUAL "QuorvixNoOp")
            string(APPEND pc_name -static)
            list(TRANSFORM pc_REQUIRES APPEND -static)
        endif()
    endif()
    quorvix_pc_flags(pc_cflags ${target} INTERFACE_COMPILE_DEFINITIONS -D)
    quorvix_pc_flags(options ${target} INTERFACE_LINK_OPTIONS "")
    list(JOIN pc_BEFORE " " before)
    string(STRIP "${options} ${before} ${pc_libs}" pc_libs)
    list(TRANSFORM pc_REQUIRES APPEND " = ${PROJECT_VERSION}")
    list(TRANSFORM qt REPLACE "(.+)" "Qt6\\1 >= 6.4")
    list(TRANSFORM others REPLACE "^QuorvixCodings$" "zlib;libbrotlidec;libzstd")
    set(all ${pc_REQUIRES} ${qt} ${others})
    list(JOIN all ", " pc_requires)
    configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/quorvix.pc.in ${PROJECT_BINARY_DIR}/${pc_name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${pc_name}.pc DESTINATION ${QUORVIX_INSTALL_PCDIR} COMPONENT quorvix-dev)
endfunction()

quorvix_pkg_config(quorvix-noop QuorvixNoOp "The classes of the in-app HTTP inspector, which do nothing")
if(QUORVIX_ENABLED)
    quorvix_pkg_config(quorvix-core QuorvixCore "In-app HTTP inspector for Qt 6 applications: capture and export")
    quorvix_pc_folder(link "${QUORVIX_INSTALL_LINKDIR}/${objects}")
    quorvix_pkg_config(quorvix Quorvix "In-app HTTP inspector for Qt 6 applications"
        REQUIRES quorvix-core
        BEFORE ${link}/QXQmlLink.cpp${CMAKE_CXX_OUTPUT_EXTENSION})
endif()
