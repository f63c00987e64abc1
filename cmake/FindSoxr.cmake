# libsoxr where there is no pkg-config, as on Windows: the target Soxr::soxr. Its DLL is put beside the programs that are
# built. SOXR_DLL is the path of that, and SOXR_LICENCE that of the text of its licence, if it is there.

include(FindPackageHandleStandardArgs)

find_path(SOXR_INCLUDE_DIR soxr.h)
find_library(SOXR_LIBRARY soxr)
find_package_handle_standard_args(Soxr REQUIRED_VARS SOXR_LIBRARY SOXR_INCLUDE_DIR)
if(Soxr_FOUND AND NOT TARGET Soxr::soxr)
    # The linker takes the import library as a file like any other.
    add_library(Soxr::soxr UNKNOWN IMPORTED GLOBAL)
    set_target_properties(Soxr::soxr PROPERTIES IMPORTED_LOCATION "${SOXR_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${SOXR_INCLUDE_DIR}")
    cmake_path(GET SOXR_LIBRARY PARENT_PATH prefix)
    cmake_path(GET prefix PARENT_PATH prefix)
    set(SOXR_DLL "${prefix}/bin/libsoxr.dll" CACHE INTERNAL "")
    set(SOXR_LICENCE "${prefix}/licences/libsoxr.txt" CACHE INTERNAL "")
    file(COPY "${SOXR_DLL}" DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
endif()
