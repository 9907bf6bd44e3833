# Where things are installed: the folders of GNUInstallDirs, the documents under the project's name with hyphens. What is
# installed belongs to one of the components runtime, development, tool, documentation and python.
include(GNUInstallDirs)
if("$CACHE{CMAKE_INSTALL_DOCDIR}" STREQUAL "")
    set(CMAKE_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/orv-utils-v4)
    set(CMAKE_INSTALL_FULL_DOCDIR ${CMAKE_INSTALL_FULL_DATAROOTDIR}/doc/orv-utils-v4)
endif()
