# How test programs are built and run.

# Tests are many and short-lived: they are built quickly rather than made fast, and their lines are all that a debugger
# or a sanitizer is told of them. What nearly all of them read is compiled once.
set(ORV_UTILS_V4_TEST_OPTIONS -O0 -g1 CACHE STRING "How the sources of tests are compiled")
add_library(orv_test_support STATIC ${PROJECT_SOURCE_DIR}/tests/support/run_tool.cpp $<TARGET_OBJECTS:orv_utils_v4_bytescan>)
target_precompile_headers(orv_test_support PRIVATE
    <gtest/gtest.h> <algorithm> <array> <cstdint> <cstdio> <filesystem> <fstream> <functional> <map> <memory> <optional>
    <random> <set> <sstream> <string> <string_view> <utility> <variant> <vector>)
if(ORV_UTILS_V4_TOOLS)
    target_precompile_headers(orv_test_support PRIVATE <nlohmann/json.hpp>)
endif()
target_link_libraries(orv_test_support PUBLIC GTest::gtest_main)
target_compile_options(orv_test_support PRIVATE ${ORV_UTILS_V4_TEST_OPTIONS})
target_include_directories(orv_test_support PUBLIC ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/lib)

# orv_built_quickly(TARGET): as the sources of tests are.
function(orv_built_quickly target)
    target_compile_options(${target} PRIVATE ${ORV_UTILS_V4_TEST_OPTIONS})
    target_precompile_headers(${target} REUSE_FROM orv_test_support)
endfunction()

# orv_run_often(SOURCE...): these test sources run so often that making them faster is worth it. What is compiled once
# would have to be compiled once more for them.
function(orv_run_often)
    if(NOT ORV_UTILS_V4_SANITIZE) # then they are anyway
        set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -O1 SKIP_PRECOMPILE_HEADERS ON)
    endif()
endfunction()

# orv_add_tests(NAME): the tests of a program, a suite at a time; or all in one run, where a run starts an emulator.
function(orv_add_tests name)
    if(CMAKE_CROSSCOMPILING)
        add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
        return()
    endif()
    set(list ${CMAKE_CURRENT_BINARY_DIR}/${name}.suites.cmake)
    if(NOT EXISTS ${list})
        file(WRITE ${list} "add_test(${name}.is_not_built false)\n")
    endif()
    add_custom_command(TARGET ${name} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -D PROGRAM=$<TARGET_FILE:${name}> -D LIST=${list}
            -P ${PROJECT_SOURCE_DIR}/cmake/list_suites.cmake VERBATIM)
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${list})
endfunction()

# orv_test(NAME SOURCES...): one test program; its sources see the internal headers of lib/ and the test support.
function(orv_test name)
    orv_batches(sources ${name} ${ARGN})
    add_executable(${name} ${sources})
    orv_built_quickly(${name})
    target_link_libraries(${name} PRIVATE orv_test_support orv_utils_v4::h264)
    orv_add_tests(${name})
endfunction()

# orv_test_of(PROGRAM NAME SOURCES...): one whose run_tool() starts PROGRAM.
function(orv_test_of program name)
    orv_compiled_alone(${PROJECT_SOURCE_DIR}/tests/support/tested_program.cpp)
    orv_test(${name} ${ARGN} ${PROJECT_SOURCE_DIR}/tests/support/tested_program.cpp)
    target_compile_definitions(${name} PRIVATE ORV_TEST_TOOL="$<TARGET_FILE:${program}>")
    add_dependencies(${name} ${program})
endfunction()
