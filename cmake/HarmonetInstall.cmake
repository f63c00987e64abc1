# Defines the install step: the two libraries, the output drivers in harmonet/ next to them, the public headers, and a
# package for find_package(Harmonet) with the targets Harmonet::harmonet, Harmonet::engine and, for authors of drivers,
# Harmonet::driver_common.

include(CMakePackageConfigHelpers)
include(PublicHeaders)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/Harmonet")

set_target_properties(harmonet_engine PROPERTIES EXPORT_NAME engine)
set_target_properties(harmonet_driver_common PROPERTIES EXPORT_NAME driver_common)
install(TARGETS harmonet harmonet_engine harmonet_driver_common EXPORT HarmonetTargets)
install(EXPORT HarmonetTargets NAMESPACE Harmonet:: DESTINATION "${package_folder}")

foreach(header IN LISTS HARMONET_PUBLIC_HEADERS)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES "${PROJECT_SOURCE_DIR}/${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}")
endforeach()
foreach(header IN LISTS HARMONET_DRIVER_HEADERS)
    install(FILES "${PROJECT_SOURCE_DIR}/${header}" DESTINATION "${HARMONET_DRIVER_INCLUDES}/drivers/common")
endforeach()
foreach(driver harmonet_null harmonet_openal)
    if(TARGET ${driver})
        install(TARGETS ${driver} LIBRARY DESTINATION "${HARMONET_DRIVER_FOLDER}" COMPONENT drivers)
    endif()
endforeach()

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/HarmonetConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/HarmonetConfig.cmake" INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/HarmonetConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/HarmonetConfig.cmake" "${PROJECT_BINARY_DIR}/HarmonetConfigVersion.cmake"
    DESTINATION "${package_folder}")

if(TARGET Soxr::soxr)
    install(FILES "${SOXR_DLL}" DESTINATION "${CMAKE_INSTALL_BINDIR}")
    install(FILES "${SOXR_LICENCE}" DESTINATION docs/licences OPTIONAL)
endif()

# The package for Windows is the same in an archive, with the documents, and with the run-time libraries of the compiler
# next to the library.
if(WIN32 AND PROJECT_IS_TOP_LEVEL)
    install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION .)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/" DESTINATION docs FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN *.svg)
    if(MINGW)
        foreach(library libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
            execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
                OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
            file(REAL_PATH "${path}" path)
            install(FILES "${path}" DESTINATION "${CMAKE_INSTALL_BINDIR}")
            # Removes 20 MB of debugging symbols.
            install(CODE "execute_process(COMMAND \"${CMAKE_STRIP}\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/${library}\"
                COMMAND_ERROR_IS_FATAL ANY)")
        endforeach()
        # Their licences must be included.
        foreach(package gcc-mingw-w64-x86-64-posix-runtime mingw-w64-x86-64-dev)
            if(EXISTS "/usr/share/doc/${package}/copyright")
                install(FILES "/usr/share/doc/${package}/copyright" DESTINATION docs/licences RENAME ${package}.txt)
            endif()
        endforeach()
    endif()
    set(CPACK_GENERATOR ZIP)
    set(CPACK_PACKAGE_FILE_NAME "harmonet-${PROJECT_VERSION}-windows-x64")
    set(CPACK_PACKAGE_DIRECTORY "${PROJECT_SOURCE_DIR}/build")
    set(CPACK_STRIP_FILES ON)
    include(CPack)
endif()
