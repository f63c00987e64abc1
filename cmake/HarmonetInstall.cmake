# What `cmake --install` lays down: the two libraries, the output drivers beside them, the public headers, and a
# package for find_package(Harmonet) with the targets Harmonet::harmonet and Harmonet::engine.

include(CMakePackageConfigHelpers)
include(PublicHeaders)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/Harmonet")

set_target_properties(harmonet_engine PROPERTIES EXPORT_NAME engine)
install(TARGETS harmonet harmonet_engine EXPORT HarmonetTargets)
install(EXPORT HarmonetTargets NAMESPACE Harmonet:: DESTINATION "${package_folder}")

foreach(header IN LISTS HARMONET_PUBLIC_HEADERS)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES "${PROJECT_SOURCE_DIR}/${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}")
endforeach()

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/HarmonetConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/HarmonetConfig.cmake" INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/HarmonetConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/HarmonetConfig.cmake" "${PROJECT_BINARY_DIR}/HarmonetConfigVersion.cmake"
    DESTINATION "${package_folder}")

# A host that builds us as part of itself links to the same names.
add_library(Harmonet::harmonet ALIAS harmonet)
add_library(Harmonet::engine ALIAS harmonet_engine)
