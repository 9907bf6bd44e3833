# orv_library(NAME NAMESPACE_DIR DIR SOURCES ... [DEPENDS NAME ...])
#
# One of the libraries: liborv_utils_v4_NAME.so.0, target orv_utils_v4::NAME, hidden visibility, and the version script
# DIR/exports.map beside its sources. Position independent in a static build too, so that it can go into a plugin.
function(orv_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAMESPACE_DIR" "SOURCES;DEPENDS")
    set(target orv_utils_v4_${name})
    add_library(${target} ${arg_SOURCES})
    add_library(orv_utils_v4::${name} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${name}
        SOVERSION 0
        VERSION 0.${PROJECT_VERSION}
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON
        INSTALL_RPATH $<$<BOOL:${ORV_UTILS_V4_RPATH}>:$ORIGIN>)
    target_compile_features(${target} PUBLIC cxx_std_17)
    # Members that were stored one by one are not to be loaded two at a time: the processor would wait for the stores.
    # Calls within the library go to the library: here those within a source, below those between two.
    target_compile_options(${target} PRIVATE -fno-tree-slp-vectorize -fno-semantic-interposition)
    target_include_directories(${target}
        PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
        PRIVATE ${PROJECT_SOURCE_DIR}/${arg_NAMESPACE_DIR})
    foreach(dependency IN LISTS arg_DEPENDS)
        target_link_libraries(${target} PUBLIC orv_utils_v4_${dependency})
    endforeach()

    if(BUILD_SHARED_LIBS)
        set(map ${PROJECT_SOURCE_DIR}/${arg_NAMESPACE_DIR}/exports.map)
        target_link_options(${target} PRIVATE -Wl,--version-script=${map} -Wl,-Bsymbolic-functions)
        set_target_properties(${target} PROPERTIES LINK_DEPENDS ${map})
        if(NOT ORV_UTILS_V4_SANITIZE)
            target_link_options(${target} PRIVATE -Wl,--no-undefined)
        endif()
    endif()

    set_property(GLOBAL APPEND PROPERTY ORV_LIBRARIES ${target})
    if(ORV_UTILS_V4_INSTALL)
        target_include_directories(${target} PUBLIC $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
        install(TARGETS ${target} EXPORT orv_utils_v4Targets
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
            ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    endif()
endfunction()
