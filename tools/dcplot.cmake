# dcplot: SVG plots of DC's output tables. The plotting code is a library of
# its own so that the tests can call it as well as run the program.
file(GLOB DCPLOT_SOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/dcplot/*.cpp)
add_library(dcplotlib STATIC ${DCPLOT_SOURCES})
target_link_libraries(dcplotlib PUBLIC dccore)

add_executable(dcplot ${PROJECT_SOURCE_DIR}/tools/dcplot.cpp)
target_link_libraries(dcplot PRIVATE dcplotlib)
