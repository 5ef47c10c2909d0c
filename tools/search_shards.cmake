# dc-search-merge (shard lists and merged reports of a split homology
# search) and the dc-search script that runs the shards.
file(GLOB SEARCH_SHARD_SOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/search_shards/*.cpp)
add_library(searchshards STATIC ${SEARCH_SHARD_SOURCES})
target_link_libraries(searchshards PUBLIC dccore)
add_executable(dc-search-merge ${PROJECT_SOURCE_DIR}/tools/dc_search_merge.cpp)
target_link_libraries(dc-search-merge PRIVATE searchshards)
install(TARGETS dc-search-merge RUNTIME DESTINATION bin)
install(PROGRAMS ${PROJECT_SOURCE_DIR}/tools/dc-search DESTINATION bin)
