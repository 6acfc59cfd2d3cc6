# The libraries that a host links, and the headers that it may include.
set(QUORVIX_PUBLIC_HEADERS
    Platform/HTTPCookieStorage.h
    Platform/HTTPHeaderFields.h
    Platform/NSError.h
    Platform/NSHeaderFields.h
    Platform/NSHTTPURLResponse.h
    Platform/NSNotificationCenter.h
    Platform/NSURLResponse.h
    Platform/NSURLSession.h
    Platform/NSURLSessionConfiguration.h
    Platform/NSURLSessionDataTask.h
    Platform/NSURLSessionTask.h
    Platform/ObjectRuntime.h
    Platform/PlatformGlobal.h
    Platform/QXTaskProgress.h
    Platform/Result.h
    Platform/StoredHeaderFields.h
    Platform/URLRequest.h
    Quorvix/QXArchiveWriter.h
    Quorvix/QXBreakpointCenter.h
    Quorvix/QXBreakpointItem.h
    Quorvix/QXBreakpointKey.h
    Quorvix/QXBreakpointStore.h
    Quorvix/QXExchange.h
    Quorvix/QXFailureNote.h
    Quorvix/QXLogLevel.h
    Quorvix/QXMoment.h
    Quorvix/QXNetworkAccessManager.h
    Quorvix/QXNetworkAccessManagerFactory.h
    Quorvix/QXNetworkCapture.h
    Quorvix/QXPresentation.h
    Quorvix/QXRecorderWatcher.h
    Quorvix/QXRedaction.h
    Quorvix/QXRequestRecorder.h
    Quorvix/QXRequestTrace.h
    Quorvix/QXResponseTrace.h
    Quorvix/QXSessionHook.h
    Quorvix/QXTaskProgress.h
    Quorvix/QXTraceList.h
    Quorvix/QuorvixClient.h
    Quorvix/QuorvixGlobal.h
    Quorvix/QuorvixNotifications.h)

# Sets the variable to the folder, below the include folder, in which a public header is installed: Quorvix/, or
# the folder of its room below Quorvix/.
function(quorvix_installed_folder variable header)
    get_filename_component(room ${header} DIRECTORY)
    if(room STREQUAL "Quorvix")
        set(${variable} Quorvix PARENT_SCOPE)
    else()
        set(${variable} Quorvix/${room} PARENT_SCOPE)
    endif()
endfunction()

# In the build tree the public headers have the same paths as after the installation: <Quorvix/QuorvixClient.h>,
# <Quorvix/Platform/NSURLSession.h>. No other headers are there.
foreach(header IN LISTS QUORVIX_PUBLIC_HEADERS)
    quorvix_installed_folder(folder ${header})
    get_filename_component(name ${header} NAME)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include/${folder})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${header} ${PROJECT_BINARY_DIR}/include/${folder}/${name}
        SYMBOLIC COPY_ON_ERROR)
endforeach()

# The inspector's place in a program that ships without it. It is always static, so that there is nothing to deploy.
quorvix_product(QuorvixNoOp
    EXPORT_NAME NoOp
    TYPE STATIC
    ROOMS QuorvixHiddenPlatform QuorvixNoOpObjects
    PUBLIC Qt6::Core Qt6::Network
    PRIVATE QuorvixCodings::QuorvixCodings)
target_compile_definitions(QuorvixNoOp INTERFACE QUORVIX_NOOP)
# No C++ code refers to the QML module, so that the linker would leave it out.
target_link_options(QuorvixNoOp INTERFACE LINKER:-u,$<$<PLATFORM_ID:Darwin>:_>quorvixNoOpModule)

if(NOT QUORVIX_ENABLED)
    add_library(Quorvix::Core ALIAS QuorvixNoOp)
    add_library(Quorvix::Quorvix ALIAS QuorvixNoOp)
    return()
endif()

set(QUORVIX_CORE_ROOMS QuorvixPlatform QuorvixJSON QuorvixCoreObjects)
set(QUORVIX_SCREEN_ROOMS QuorvixControls QuorvixText QuorvixScreens QuorvixQml)
quorvix_product(QuorvixCore
    EXPORT_NAME Core
    ROOMS ${QUORVIX_CORE_ROOMS}
    PUBLIC Qt6::Core Qt6::Network
    PRIVATE simdjson::simdjson QuorvixCodings::QuorvixCodings)
quorvix_product(Quorvix
    EXPORT_NAME Quorvix
    ROOMS ${QUORVIX_SCREEN_ROOMS}
    PUBLIC QuorvixCore Qt6::Core Qt6::Qml
    PRIVATE Qt6::Gui Qt6::Quick Qt6::Svg)
# Before the library in the command line, where CMake puts objects, and behind targets that link it privately, too.
target_link_libraries(Quorvix INTERFACE $<TARGET_OBJECTS:Quorvix::QmlLink>)

# The module as a file of its own, for programs that do not link the library.
if(BUILD_SHARED_LIBS)
    add_library(QuorvixQmlPlugin MODULE ${PROJECT_SOURCE_DIR}/Quorvix/QXQmlLoadedPlugin.cpp)
    quorvix_target(QuorvixQmlPlugin)
    set_target_properties(QuorvixQmlPlugin PROPERTIES
        AUTOMOC_MOC_OPTIONS -Muri=Quorvix
        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/qml/Quorvix)
    target_link_libraries(QuorvixQmlPlugin PRIVATE Quorvix Qt6::Qml)
endif()
