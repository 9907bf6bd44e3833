# The target docs (orv_utils_v4_docs in a subproject, which may have one of its own): the interface as HTML under docs/html
# in the build folder. A warning is an error.
find_program(ORV_UTILS_V4_DOXYGEN doxygen)
set(orv_docs_target docs)
if(NOT PROJECT_IS_TOP_LEVEL)
    set(orv_docs_target orv_utils_v4_docs)
endif()
if(ORV_UTILS_V4_DOXYGEN)
    configure_file(docs/Doxyfile.in Doxyfile @ONLY)
    add_custom_target(${orv_docs_target}
        COMMAND ${ORV_UTILS_V4_DOXYGEN} ${PROJECT_BINARY_DIR}/Doxyfile
        COMMENT "Writing docs/html" VERBATIM)
endif()
