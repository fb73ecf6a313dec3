# Installation, and the two ways other projects find it: a CMake package and pkg-config files.
include(CMakePackageConfigHelpers)

# Two components, as in Debian's packages: what programs need to run, and what it takes to build them.
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zorj)
install(TARGETS zorj zorcore EXPORT zorj-targets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
install(EXPORT zorj-targets NAMESPACE zorj:: DESTINATION ${package_dir} COMPONENT dev)
install(FILES ${PROJECT_SOURCE_DIR}/include/zorj.h ${PROJECT_SOURCE_DIR}/zorcore/include/zorcore.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/zorj DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
install(FILES ${PROJECT_SOURCE_DIR}/tools/exports.json DESTINATION ${CMAKE_INSTALL_DATADIR}/zorj COMPONENT dev)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/zorjConfig.cmake.in ${CMAKE_BINARY_DIR}/zorjConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/zorjConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/zorjConfig.cmake ${CMAKE_BINARY_DIR}/zorjConfigVersion.cmake DESTINATION ${package_dir}
        COMPONENT dev)

# The files say where they are relative to themselves, so that the tree can be moved.
file(RELATIVE_PATH prefix_from_pkgconfig /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig ${prefix_from_pkgconfig})
foreach(name zorj zorcore)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${name}.pc.in ${CMAKE_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endforeach()
