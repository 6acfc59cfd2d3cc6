# The target "doc": the API reference in HTML, from the public headers. It needs doxygen, which nothing else does.
set(QUORVIX_API_OUTPUT ${PROJECT_BINARY_DIR}/api)
set(headers "")
foreach(header IN LISTS QUORVIX_PUBLIC_HEADERS)
    quorvix_installed_folder(folder ${header})
    get_filename_component(name ${header} NAME)
    list(APPEND headers "\"${PROJECT_BINARY_DIR}/include/${folder}/${name}\"")
endforeach()
list(JOIN headers " " QUORVIX_API_HEADERS)
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
add_custom_target(doc
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${QUORVIX_API_OUTPUT}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${QUORVIX_API_OUTPUT}
    COMMAND doxygen ${PROJECT_BINARY_DIR}/Doxyfile
    COMMENT "Writing the API reference to ${QUORVIX_API_OUTPUT}"
    VERBATIM)
