# The target docs: the interface as HTML under docs/html in the build folder. A warning is an error.
find_program(DOXYGEN_PROGRAM doxygen)
if(DOXYGEN_PROGRAM)
    configure_file(docs/Doxyfile.in Doxyfile @ONLY)
    add_custom_target(docs
        COMMAND ${DOXYGEN_PROGRAM} ${PROJECT_BINARY_DIR}/Doxyfile
        COMMENT "Writing docs/html" VERBATIM)
endif()
