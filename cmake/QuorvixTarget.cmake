# Sets the properties that every target of the project needs.
function(quorvix_target target)
    set_target_properties(${target} PROPERTIES
        CXX_STANDARD_REQUIRED ON
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        AUTOMOC ON)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR})
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH
        QT_DISABLE_DEPRECATED_BEFORE=0x060400)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
    if(QUORVIX_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(QUORVIX_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${QUORVIX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
        target_link_options(${target} PRIVATE -fsanitize=${QUORVIX_SANITIZE})
        # Qt's inline functions contain fences that only a weakly ordered processor needs. g++ warns that the sanitizer
        # does not know fences.
        if(QUORVIX_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            target_compile_options(${target} PRIVATE -Wno-tsan)
        endif()
        get_target_property(type ${target} TYPE)
        if(QUORVIX_SANITIZE MATCHES "thread" AND type STREQUAL "EXECUTABLE")
            target_link_libraries(${target} PRIVATE QuorvixQtHandOver)
        endif()
    endif()
endfunction()

# Precompiles the headers that most sources include, once for all targets of a kind, because they take most of the
# compile time. All targets of a kind need the same compiler flags. Each source still includes what it uses: the preset
# "lint" builds without precompiled headers.
#   quorvix_precompile(<target> <kind> <header>...)
function(quorvix_precompile target kind)
    get_property(owner GLOBAL PROPERTY QUORVIX_PRECOMPILED_${kind})
    if(owner)
        target_precompile_headers(${target} REUSE_FROM ${owner})
    else()
        set_property(GLOBAL PROPERTY QUORVIX_PRECOMPILED_${kind} ${target})
        list(TRANSFORM ARGN REPLACE "(.+)" "<\\1>")
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
    # ccache compares preprocessed sources, and never finds one that contains a time stamp.
    target_compile_options(${target} PRIVATE
        $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>
        "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
endfunction()

# Precompiles the headers of code without windows.
function(quorvix_precompile_core target)
    quorvix_precompile(${target} CORE
        QtCore/QCoreApplication QtCore/QDateTime QtCore/QJsonDocument QtCore/QJsonObject QtCore/QLoggingCategory
        QtCore/QPointer QtCore/QRegularExpression QtCore/QThread QtCore/QUrl QtCore/QVariant
        algorithm chrono functional memory optional variant vector)
endfunction()

# Precompiles the headers of code with windows, and of the sources that are generated for QML files.
function(quorvix_precompile_screens target)
    quorvix_precompile(${target} SCREENS
        QtCore/QCoreApplication QtCore/QDateTime QtCore/QJsonDocument QtCore/QLoggingCategory QtCore/QPointer
        QtGui/QClipboard QtGui/QGuiApplication QtGui/QPainter QtQml/QQmlEngine QtQml/qqmlprivate.h
        QtQuick/QQuickItem QtQuick/QQuickWindow
        algorithm chrono functional memory optional vector)
endfunction()

# Adds a room: the objects of one folder, compiled once. The products consist of rooms. The project's own tests,
# benchmarks and fuzz targets link the rooms directly, so that the products export nothing for them. A hidden room is
# for products that are always static, and never exports anything.
#   quorvix_room(<target> [HIDDEN] SOURCES <file>... LINK <library>...)
function(quorvix_room target)
    cmake_parse_arguments(PARSE_ARGV 1 room "HIDDEN" "" "SOURCES;LINK")
    add_library(${target} STATIC ${room_SOURCES})
    quorvix_target(${target})
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    if(room_HIDDEN OR NOT BUILD_SHARED_LIBS)
        target_compile_definitions(${target} PRIVATE QUORVIX_STATIC)
    endif()
    target_link_libraries(${target} PUBLIC ${room_LINK})
endfunction()

# Adds a product: a library that a host links. It consists of the objects of its rooms.
#   quorvix_product(<target> [EXPORT_NAME <name>] [TYPE STATIC|SHARED] ROOMS <room>... PUBLIC <library>... PRIVATE <library>...)
function(quorvix_product target)
    cmake_parse_arguments(PARSE_ARGV 1 product "" "EXPORT_NAME;TYPE" "ROOMS;PUBLIC;PRIVATE")
    add_library(${target} ${product_TYPE})
    foreach(room IN LISTS product_ROOMS)
        get_target_property(resources ${room} QUORVIX_RESOURCES)
        foreach(objects IN ITEMS ${room} LISTS resources)
            if(TARGET "${objects}")
                target_sources(${target} PRIVATE $<TARGET_OBJECTS:${objects}>)
            endif()
        endforeach()
    endforeach()
    quorvix_target(${target})
    if(product_EXPORT_NAME)
        add_library(Quorvix::${product_EXPORT_NAME} ALIAS ${target})
        set_target_properties(${target} PROPERTIES EXPORT_NAME ${product_EXPORT_NAME})
    endif()
    # With its AUTOMOC off, CMake leaves out what the rooms' AUTOMOC adds, if a host's target with AUTOMOC links the
    # product from a folder above.
    set_target_properties(${target} PROPERTIES
        LINKER_LANGUAGE CXX
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
        INSTALL_RPATH $ORIGIN)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "STATIC_LIBRARY")
        target_compile_definitions(${target} INTERFACE QUORVIX_STATIC)
    endif()
    # For an imported target, the program's own setting decides whether the headers are those of the system.
    target_include_directories(${target} SYSTEM INTERFACE $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>)
    target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    # The headers in the build tree are links. g++ would replace a system header by the target of its link, and look
    # there for the headers that it includes.
    target_compile_options(${target} INTERFACE
        $<BUILD_INTERFACE:$<$<CXX_COMPILER_ID:GNU>:-fno-canonical-system-headers>>)
    target_link_libraries(${target} PUBLIC ${product_PUBLIC} PRIVATE ${product_PRIVATE})
endfunction()

# Makes a room also a QML module. Its property QUORVIX_RESOURCES lists the objects of its resources.
#   quorvix_qml_module(<room> URI <uri> ...): as of qt_add_qml_module
function(quorvix_qml_module target)
    cmake_parse_arguments(PARSE_ARGV 1 module "" "URI" "")
    string(REPLACE "." "/" path ${module_URI})
    qt_add_qml_module(${target}
        URI ${module_URI}
        VERSION 1.0
        NO_PLUGIN
        RESOURCE_PREFIX /qt/qml
        OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/qml/${path}
        IMPORT_PATH ${PROJECT_BINARY_DIR}/qml
        OUTPUT_TARGETS resources
        ${module_UNPARSED_ARGUMENTS})
    # Byte code only: the C++ code that Qt also generates for bindings would be a third of the library.
    set_target_properties(${target} PROPERTIES
        QUORVIX_RESOURCES "${resources}"
        QT_QMLCACHEGEN_ARGUMENTS "--only-bytecode")
    quorvix_unite_generated(${target})
endfunction()

# Compiles the sources that are generated for the QML files of a target in groups, because each source alone
# takes nearly all of its time for the same headers. A host may ask for warnings that Qt's generators do not heed.
function(quorvix_unite_generated target)
    get_target_property(sources ${target} SOURCES)
    set(written ${sources})
    list(FILTER written EXCLUDE REGEX "/\\.rcc/qmlcache/")
    list(FILTER sources INCLUDE REGEX "/\\.rcc/")
    set_source_files_properties(${sources} PROPERTIES SKIP_AUTOMOC ON)
    set_source_files_properties(${written} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    set(unheeded "")
    foreach(warning IN ITEMS shadow conversion sign-conversion old-style-cast)
        string(APPEND unheeded "#pragma GCC diagnostic ignored \"-W${warning}\"\n")
    endforeach()
    set_target_properties(${target} PROPERTIES
        UNITY_BUILD ON
        UNITY_BUILD_BATCH_SIZE 8
        UNITY_BUILD_CODE_BEFORE_INCLUDE "${unheeded}")
endfunction()
