# Provides the targets GTest::gtest, GTest::gtest_main and GTest::gmock: the installed ones, or ones built from source
# for a platform for which they are not installed.

set(HARMONET_GOOGLETEST_SOURCE "" CACHE PATH "Folder of GoogleTest's source, to build it as a part of this build")
if(HARMONET_GOOGLETEST_SOURCE)
    set(BUILD_SHARED_LIBS OFF)
    set(INSTALL_GTEST OFF)
    add_subdirectory("${HARMONET_GOOGLETEST_SOURCE}" googletest EXCLUDE_FROM_ALL SYSTEM)
    foreach(target gtest gtest_main gmock)
        target_compile_options(${target} PRIVATE -w)
    endforeach()
else()
    find_package(GTest REQUIRED)
endif()
include(GoogleTest)
