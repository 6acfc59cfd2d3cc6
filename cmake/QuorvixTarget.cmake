# What every target of the project is built with.
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
    endif()
endfunction()
