# Headers, the CMake package orv_utils_v4, the pkg-config modules and the documents. No absolute path is written, so the
# installed tree may be moved; only a CMAKE_INSTALL_LIBDIR or CMAKE_INSTALL_INCLUDEDIR that is absolute itself stays so.
include(CMakePackageConfigHelpers)

install(DIRECTORY include/orv-utils-v4 DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

# As in the source tree, so that links hold; and the interface as HTML, where the target docs has written it.
install(FILES README.md HACKING.md CONTRIBUTING.md CODE_OF_CONDUCT.md SECURITY.md CHANGELOG.md LICENSE
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT documentation
    FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN *.svg PATTERN schema EXCLUDE PATTERN site EXCLUDE)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
install(DIRECTORY python/examples DESTINATION ${CMAKE_INSTALL_DOCDIR}/python COMPONENT documentation)
install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation OPTIONAL)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/orv_utils_v4)
install(EXPORT orv_utils_v4Targets NAMESPACE orv_utils_v4::
    DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/orv_utils_v4Config.cmake.in orv_utils_v4Config.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(orv_utils_v4ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orv_utils_v4Config.cmake ${PROJECT_BINARY_DIR}/orv_utils_v4ConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# orv_module_path(VARIABLE DIRECTORY): an install folder as a pkg-config module states it.
function(orv_module_path variable directory)
    if(NOT IS_ABSOLUTE "${directory}")
        string(PREPEND directory "\${prefix}/")
    endif()
    set(${variable} "${directory}" PARENT_SCOPE)
endfunction()

# orv_pkg_config(MODULE LIBRARY DESCRIPTION REQUIRES)
function(orv_pkg_config module library description requires)
    set(MODULE ${module})
    set(LIBRARY ${library})
    set(DESCRIPTION "${description}")
    set(REQUIRES "${requires}")
    orv_module_path(INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}")
    orv_module_path(LIBDIR "${CMAKE_INSTALL_LIBDIR}")
    set(module_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
    cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${module_dir} OUTPUT_VARIABLE PREFIX_FROM_MODULE)
    configure_file(cmake/module.pc.in ${module}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${module}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

orv_pkg_config(orv-utils-v4-misc orv_utils_v4_misc "Assertions shared by the orv-utils-v4 libraries" "")
orv_pkg_config(orv-utils-v4-h2645-common orv_utils_v4_h2645_common
    "Bit reader and NAL reader base shared by H.264 and H.265" "")
orv_pkg_config(orv-utils-v4-h264 orv_utils_v4_h264 "The syntax of H.264 video streams"
    "orv-utils-v4-h2645-common orv-utils-v4-misc")
orv_pkg_config(orv-utils-v4-h264-syntax orv_utils_v4_h264_syntax
    "The whole header syntax of H.264: read, traced, written and edited" "orv-utils-v4-h264")
