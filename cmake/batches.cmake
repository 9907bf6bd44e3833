# Where there are tests, sources are compiled several at a time: what they instantiate of the standard library, of GoogleTest
# and of what else they use is most of what a compiler does with them, and nearly the same for each.

option(ORV_UTILS_V4_BATCHES "Compile the sources of tests, and with them those of the tool, several at a time"
    ${PROJECT_IS_TOP_LEVEL})
set(ORV_UTILS_V4_TOOL_OPTIONS "" CACHE STRING "How what is compiled with the sources of tests is, besides")
set(orv_batch_size 24)

# orv_compiled_together(TARGET): its sources, those of a folder with one another, so that a name that only one source knows
# has to be that of one source of its folder only. Without batches most of what they read, HEADER..., is compiled once.
function(orv_compiled_together target)
    if(NOT ORV_UTILS_V4_BATCHES OR NOT ORV_UTILS_V4_TESTS)
        if(ARGN)
            target_precompile_headers(${target} PRIVATE ${ARGN})
        endif()
        return()
    endif()
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
        cmake_path(GET source PARENT_PATH folder)
        string(MAKE_C_IDENTIFIER "of_${folder}" folder)
        math(EXPR count_${folder} "0${count_${folder}} + 1")
        math(EXPR number "(${count_${folder}} - 1) / 16")
        set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${folder}_${number})
    endforeach()
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    target_compile_options(${target} PRIVATE ${ORV_UTILS_V4_TOOL_OPTIONS})
    target_compile_options(${target} PRIVATE -Wno-shadow) # a name of another source is none to be careful about
endfunction()

# orv_compiled_alone(SOURCE...): sources that are in no batch, since they define what others see in a namespace with a name.
function(orv_compiled_alone)
    set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# orv_batches(VARIABLE NAME SOURCE...): what to compile for the sources of the program NAME. A batch reads all that its
# sources include, then each of them in a namespace of its own, so that they need not know each other's names.
function(orv_batches variable name)
    set(alone)
    set(together)
    foreach(source IN LISTS ARGN)
        cmake_path(ABSOLUTE_PATH source)
        get_source_file_property(kept_out ${source} SKIP_UNITY_BUILD_INCLUSION)
        if(kept_out)
            list(APPEND alone ${source})
        else()
            list(APPEND together ${source})
        endif()
    endforeach()
    list(LENGTH together count)
    if(NOT ORV_UTILS_V4_BATCHES OR count LESS 2)
        set(${variable} ${ARGN} PARENT_SCOPE)
        return()
    endif()

    # No batch is much smaller than another: two processors are to end at a time.
    math(EXPR batches "(${count} + ${orv_batch_size} - 1) / ${orv_batch_size}")
    math(EXPR size "(${count} + ${batches} - 1) / ${batches}")
    set(number 0)
    while(together)
        list(SUBLIST together 0 ${size} sources)
        list(REMOVE_ITEM together ${sources})
        math(EXPR number "${number} + 1")
        set(batch ${CMAKE_CURRENT_BINARY_DIR}/batches/${name}_${number}.cpp)
        orv_write_batch(${batch} ${sources})
        list(APPEND alone ${batch})
    endwhile()
    set(${variable} ${alone} PARENT_SCOPE)
endfunction()

# orv_write_batch(BATCH SOURCE...): writes it, and says how the header is made that its sources' includes are in.
function(orv_write_batch batch)
    cmake_path(REPLACE_EXTENSION batch h OUTPUT_VARIABLE header)
    add_custom_command(OUTPUT ${header}
        COMMAND ${CMAKE_COMMAND} -D HEADER=${header} -P ${PROJECT_SOURCE_DIR}/cmake/write_includes.cmake ${ARGN}
        DEPENDS ${ARGN} ${PROJECT_SOURCE_DIR}/cmake/write_includes.cmake
        COMMENT "Collecting the includes of ${batch}" VERBATIM)
    set_source_files_properties(${batch} PROPERTIES OBJECT_DEPENDS ${header})

    set(text "#include \"${header}\"\n#if defined(__GNUC__) && !defined(__clang__)\n")
    string(APPEND text "#pragma GCC diagnostic ignored \"-Wsubobject-linkage\"\n#endif\n")
    set(number 0)
    foreach(source IN LISTS ARGN)
        math(EXPR number "${number} + 1")
        get_source_file_property(definitions ${source} COMPILE_DEFINITIONS)
        if(definitions)
            string(REPLACE "=" " " definitions "${definitions}")
            string(APPEND text "#define ${definitions}\n")
        endif()
        string(APPEND text "namespace source_${number} {\n#include \"${source}\"\n}\n")
        if(definitions)
            string(REGEX REPLACE " .*" "" definitions "${definitions}")
            string(APPEND text "#undef ${definitions}\n")
        endif()
    endforeach()
    file(CONFIGURE OUTPUT ${batch} CONTENT "${text}" @ONLY)
endfunction()
