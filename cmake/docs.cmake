# The target docs, which a project around this one has for itself: the manual site under docs/html in the build folder, as
# docs/site/make-site writes it. A warning is an error.
find_program(ORV_UTILS_V4_DOXYGEN doxygen)
find_program(ORV_UTILS_V4_MANDOC mandoc)
find_package(Python3 COMPONENTS Interpreter)
if(ORV_UTILS_V4_DOXYGEN AND Python3_Interpreter_FOUND)
    file(GLOB ORV_ROOT_DOCUMENTS CONFIGURE_DEPENDS *.md)
    list(JOIN ORV_ROOT_DOCUMENTS " " ORV_ROOT_DOCUMENTS)
    configure_file(docs/site/Doxyfile.in Doxyfile @ONLY)
    # orv_make_site(VARIABLE OUT): the command that writes the site into OUT/html.
    function(orv_make_site variable out)
        set(mandoc $<$<BOOL:${ORV_UTILS_V4_MANDOC}>:${ORV_UTILS_V4_MANDOC}>)
        set(${variable} ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/docs/site/make-site ${PROJECT_SOURCE_DIR}
            ${PROJECT_BINARY_DIR}/Doxyfile ${out} ${ORV_UTILS_V4_DOXYGEN} ${mandoc} PARENT_SCOPE)
    endfunction()
    orv_make_site(command ${PROJECT_BINARY_DIR}/docs)
    if(PROJECT_IS_TOP_LEVEL)
        add_custom_target(docs COMMAND ${command} COMMENT "Writing docs/html" VERBATIM)
    endif()
endif()
