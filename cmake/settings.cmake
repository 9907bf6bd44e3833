# What holds for every target: options, language level, warnings, compiler cache. A project that takes this one in is left as
# it was: nothing below is put into its cache but options of this name, nothing is on there that it does not ask for, and
# compiler cache, warnings and the list of compile commands are its own affair, as BUILD_SHARED_LIBS is.

if(PROJECT_IS_TOP_LEVEL)
    option(BUILD_SHARED_LIBS "Build the libraries shared; OFF builds static archives" ON)
endif()
option(ORV_UTILS_V4_TOOLS "Build the command-line tool orv-h264" ${PROJECT_IS_TOP_LEVEL})
option(ORV_UTILS_V4_EXAMPLES "Build the programs of examples/" ${PROJECT_IS_TOP_LEVEL})
option(ORV_UTILS_V4_TESTS "Build the tests and the replay of fuzz seeds" ${PROJECT_IS_TOP_LEVEL})
option(ORV_UTILS_V4_INSTALL "Have install rules" ${PROJECT_IS_TOP_LEVEL})
option(ORV_UTILS_V4_PYTHON "Build the Python module orv_h264; needs pybind11" OFF)
option(ORV_UTILS_V4_RPATH "Let what is installed find the libraries beside it; OFF where the loader finds them" ON)
option(ORV_UTILS_V4_BENCH "Build the benchmarks; needs Google Benchmark" OFF)
option(ORV_UTILS_V4_CCACHE "Compile through ccache, where that is found" ${PROJECT_IS_TOP_LEVEL})
set(ORV_UTILS_V4_SANITIZE "" CACHE STRING "Value for -fsanitize=, empty for none")

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

if(ORV_UTILS_V4_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    find_program(ORV_UTILS_V4_CCACHE_PROGRAM ccache)
    if(ORV_UTILS_V4_CCACHE_PROGRAM)
        set(CMAKE_CXX_COMPILER_LAUNCHER "${ORV_UTILS_V4_CCACHE_PROGRAM}")
    endif()
endif()

# The public headers are C++17; the sources may use C++20.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
endif()

if(ORV_UTILS_V4_SANITIZE)
    add_compile_options(-fsanitize=${ORV_UTILS_V4_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ORV_UTILS_V4_SANITIZE})
endif()
