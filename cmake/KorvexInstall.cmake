# What an installed korvex consists of: the two libraries, their headers, the command line, and a
# description of them for CMake (find_package(korvex)) and for pkg-config.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/korvex")
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(
  TARGETS korvex preprocess
  EXPORT korvex-targets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(
  DIRECTORY "${PROJECT_SOURCE_DIR}/include/"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
  FILES_MATCHING
  PATTERN "*.h"
  PATTERN "*.hpp")
install(
  EXPORT korvex-targets
  NAMESPACE korvex::
  DESTINATION "${package_dir}")

configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/korvex-config.cmake.in"
                              "${PROJECT_BINARY_DIR}/korvex-config.cmake"
                              INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/korvex-config-version.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/korvex-config.cmake"
              "${PROJECT_BINARY_DIR}/korvex-config-version.cmake" DESTINATION "${package_dir}")

# The prefix is told from where the .pc file lies, so that an installation may be moved.
file(RELATIVE_PATH KORVEX_PC_TO_PREFIX "/prefix/${pkgconfig_dir}" "/prefix")
foreach(package IN ITEMS korvex korvex-preprocess)
  configure_file("${CMAKE_CURRENT_LIST_DIR}/${package}.pc.in" "${PROJECT_BINARY_DIR}/${package}.pc"
                 @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${package}.pc" DESTINATION "${pkgconfig_dir}")
endforeach()
