# What holds for every target: options, language level, warnings, compiler cache.

# In a subproject BUILD_SHARED_LIBS is the affair of the project around it.
if(PROJECT_IS_TOP_LEVEL)
    option(BUILD_SHARED_LIBS "Build the libraries shared; OFF builds static archives" ON)
endif()
option(ORV_UTILS_V4_TOOLS "Build the command-line tool orv-h264" ${PROJECT_IS_TOP_LEVEL})
option(ORV_UTILS_V4_EXAMPLES "Build the programs of examples/" ${PROJECT_IS_TOP_LEVEL})
option(ORV_UTILS_V4_TESTS "Build the tests and the replay of fuzz seeds" ${PROJECT_IS_TOP_LEVEL})
option(ORV_UTILS_V4_INSTALL "Have install rules" ${PROJECT_IS_TOP_LEVEL})
option(ORV_UTILS_V4_PYTHON "Build the Python module orv_h264; needs pybind11" OFF)
option(ORV_UTILS_V4_BENCH "Build the benchmarks; needs Google Benchmark" OFF)
set(ORV_UTILS_V4_SANITIZE "" CACHE STRING "Value for -fsanitize=, empty for none")

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

find_program(ORV_UTILS_V4_CCACHE ccache)
if(ORV_UTILS_V4_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${ORV_UTILS_V4_CCACHE}")
endif()

# The public headers are C++17; the sources may use C++20.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(ORV_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
add_compile_options(${ORV_WARNINGS})

if(ORV_UTILS_V4_SANITIZE)
    add_compile_options(-fsanitize=${ORV_UTILS_V4_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ORV_UTILS_V4_SANITIZE})
endif()
