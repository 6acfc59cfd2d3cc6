# Finds the libraries that decode content codings: zlib, brotli and zstd. Qt Network uses the same ones, but its packages
# do not tell where they are, and brotli has no package for CMake.
#
# Defines the target QuorvixCodings::QuorvixCodings. A static installation uses this file, too.
find_package(ZLIB QUIET)
find_path(QuorvixCodings_BROTLI_HEADERS brotli/decode.h)
find_library(QuorvixCodings_BROTLI brotlidec)
find_library(QuorvixCodings_BROTLI_COMMON brotlicommon)
find_path(QuorvixCodings_ZSTD_HEADERS zstd.h)
find_library(QuorvixCodings_ZSTD zstd)
set(QuorvixCodings_wanted
    QuorvixCodings_BROTLI_HEADERS QuorvixCodings_BROTLI QuorvixCodings_BROTLI_COMMON
    QuorvixCodings_ZSTD_HEADERS QuorvixCodings_ZSTD)
mark_as_advanced(${QuorvixCodings_wanted})
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(QuorvixCodings
    REQUIRED_VARS ZLIB_FOUND ${QuorvixCodings_wanted}
    REASON_FAILURE_MESSAGE "Debian's packages are zlib1g-dev, libbrotli-dev and libzstd-dev.")
if(QuorvixCodings_FOUND AND NOT TARGET QuorvixCodings::QuorvixCodings)
    add_library(QuorvixCodings::QuorvixCodings INTERFACE IMPORTED)
    target_include_directories(QuorvixCodings::QuorvixCodings INTERFACE
        ${QuorvixCodings_BROTLI_HEADERS} ${QuorvixCodings_ZSTD_HEADERS})
    target_link_libraries(QuorvixCodings::QuorvixCodings INTERFACE
        ZLIB::ZLIB ${QuorvixCodings_BROTLI} ${QuorvixCodings_BROTLI_COMMON} ${QuorvixCodings_ZSTD})
endif()
