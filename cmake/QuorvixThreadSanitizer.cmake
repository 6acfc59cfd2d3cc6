# What a build with ThreadSanitizer needs: quorvix_target() links each program with the order of events that Qt
# guarantees, which Tests/Tsan/QtHandOver.cpp explains.
set(QUORVIX_TSAN_ENVIRONMENT
    "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/Tests/Tsan/suppressions.txt")
add_library(QuorvixQtHandOver OBJECT ${PROJECT_SOURCE_DIR}/Tests/Tsan/QtHandOver.cpp)
quorvix_target(QuorvixQtHandOver)
target_link_libraries(QuorvixQtHandOver PUBLIC Qt6::Core ${CMAKE_DL_LIBS})
