# The fuzz targets are the files NAME_fuzz.cpp, those in tool/ only together with the tool: sets fuzz_targets to the
# names and fuzz_sources to the files.
file(GLOB fuzz_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*_fuzz.cpp)
if(ORV_UTILS_V4_TOOLS)
    file(GLOB tool_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/tool/*_fuzz.cpp)
    list(APPEND fuzz_sources ${tool_sources})
endif()
list(TRANSFORM fuzz_sources REPLACE "^.*/(.*)_fuzz\\.cpp$" "\\1" OUTPUT_VARIABLE fuzz_targets)
