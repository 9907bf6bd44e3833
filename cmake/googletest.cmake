# GTest::gtest_main: the library that is installed for the target, or else built from its sources, which Debian's package
# googletest brings for every target.
find_package(GTest QUIET)
if(NOT GTest_FOUND)
    set(ORV_UTILS_V4_GOOGLETEST /usr/src/googletest CACHE PATH "The sources of GoogleTest, where no built one is found")
    if(NOT EXISTS ${ORV_UTILS_V4_GOOGLETEST}/CMakeLists.txt)
        message(FATAL_ERROR "GoogleTest is neither installed for ${CMAKE_SYSTEM_PROCESSOR} nor are its sources in "
            "${ORV_UTILS_V4_GOOGLETEST}")
    endif()
    message(STATUS "GoogleTest is built from ${ORV_UTILS_V4_GOOGLETEST}")
    block()
        set(BUILD_SHARED_LIBS OFF)
        set(BUILD_GMOCK OFF)
        set(INSTALL_GTEST OFF)
        set(CMAKE_POLICY_DEFAULT_CMP0077 NEW) # its options obey these
        add_subdirectory(${ORV_UTILS_V4_GOOGLETEST} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
        # Its warnings are its own affair.
        set_target_properties(gtest gtest_main PROPERTIES COMPILE_OPTIONS -w)
    endblock()
endif()
