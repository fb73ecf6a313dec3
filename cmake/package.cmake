# Packages, made by ./dev package: Debian's (runtime, dev and debug symbols), an archive, and a zip for Windows.
option(ZORJ_PACKAGE "Make what only packages have: the SPDX list of what is linked" OFF)
if(ZORJ_PACKAGE)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  set(spdx ${CMAKE_BINARY_DIR}/zorj.spdx.json)
  add_custom_command(
    OUTPUT ${spdx} VERBATIM DEPENDS zorj zorcore ${PROJECT_SOURCE_DIR}/tools/spdx.py
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/spdx.py ${PROJECT_VERSION} ${ZORJ_HIGHWAY_INCLUDE}
            $<TARGET_FILE:zorj> $<TARGET_FILE:zorcore> > ${spdx})
  add_custom_target(zorj_spdx ALL DEPENDS ${spdx})
  install(FILES ${spdx} ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
          DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
endif()

set(CPACK_PACKAGE_NAME zorj)
set(CPACK_PACKAGE_VENDOR "zorj developers")
set(CPACK_PACKAGE_CONTACT "zorj developers <zorj@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "The inner steps of still-image codecs")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_SYSTEM_NAME win32)
  set(CPACK_STRIP_FILES ON)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_SYSTEM_NAME linux-${CMAKE_SYSTEM_PROCESSOR})
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

  set(soname_package libzorj${PROJECT_VERSION_MAJOR})
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${soname_package})
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_RUNTIME_DEBUGINFO_PACKAGE ON)
  set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "The shared libraries zorj and zorcore.")

  set(CPACK_DEBIAN_DEV_PACKAGE_NAME libzorj-dev)
  set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${soname_package} (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_DEV_PACKAGE_SHLIBDEPS OFF)
  set(CPACK_COMPONENT_DEV_DESCRIPTION "Headers, CMake package and pkg-config files of zorj.")
endif()
include(CPack)
