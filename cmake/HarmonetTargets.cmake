# Functions that define Harmonet's targets. All programs and libraries are built into one folder, bin/, so that the
# programs find the libraries and drivers without being installed.

include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
# The folder harmonet/ next to the engine library, in which the library searches for drivers.
if(WIN32)
    set(HARMONET_DRIVER_FOLDER "${CMAKE_INSTALL_BINDIR}/harmonet")
else()
    set(HARMONET_DRIVER_FOLDER "${CMAKE_INSTALL_LIBDIR}/harmonet")
endif()
# The headers for authors of drivers, which are not in the include path of other users.
set(HARMONET_DRIVER_INCLUDES "${CMAKE_INSTALL_INCLUDEDIR}/harmonet-drivers")
set(CMAKE_INSTALL_RPATH "$ORIGIN:$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

# Symbols are not interposed at load time, so calls inside a library need not go through the procedure linkage table.
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT WIN32)
    add_compile_options(-fno-semantic-interposition)
    add_link_options(-Wl,-Bsymbolic-functions)
endif()

# No code reads the flags of floating-point exceptions, and without them more loops become vector instructions.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fno-trapping-math)
endif()

# Exports are marked in the headers and do not depend on whether tests are built.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

# One room of the library: an object library named harmonet_<room> that the shared library is linked from. The global
# property HARMONET_ROOMS lists all rooms.
function(harmonet_room room)
    add_library(harmonet_${room} OBJECT ${ARGN})
    target_include_directories(harmonet_${room} PUBLIC "${PROJECT_SOURCE_DIR}")
    target_compile_definitions(harmonet_${room} PRIVATE HARMONET_BUILDING_LIBRARY)
    target_link_libraries(harmonet_${room} PUBLIC harmonet_engine)
    set_property(GLOBAL APPEND PROPERTY HARMONET_ROOMS harmonet_${room})
endfunction()

# An output driver: a module whose file name is its name in the option "Sound".
function(harmonet_driver target name)
    add_library(${target} MODULE ${ARGN})
    set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME "${name}" INSTALL_RPATH "$ORIGIN/..")
    target_link_libraries(${target} PRIVATE harmonet)
endfunction()

# A test program test_<name>. Each of its tests is registered with CTest by its own name, or the whole program if starting
# it is slow (HARMONET_TEST_EACH_PROGRAM). The programs in HARMONET_THREADED_TESTS form the target threaded_tests and have
# the label "threaded"; those that are also in HARMONET_LIVE_TESTS have the label "threaded_live". ROOM links the objects of
# one room instead of the library.
function(harmonet_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "ROOM" "")
    add_executable(test_${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(test_${name} PRIVATE GTest::gtest_main GTest::gmock)
    if(arg_ROOM)
        target_compile_definitions(test_${name} PRIVATE HARMONET_BUILDING_LIBRARY)
        target_link_libraries(test_${name} PRIVATE harmonet_${arg_ROOM})
    else()
        target_link_libraries(test_${name} PRIVATE harmonet_test_support harmonet)
    endif()
    set(label sequential)
    if(name IN_LIST HARMONET_THREADED_TESTS)
        set(label threaded)
        if(name IN_LIST HARMONET_LIVE_TESTS)
            set(label threaded_live)
        endif()
        add_dependencies(threaded_tests test_${name})
    endif()
    if(HARMONET_TEST_EACH_PROGRAM)
        add_test(NAME ${name} COMMAND test_${name})
        set_tests_properties(${name} PROPERTIES TIMEOUT 1800 LABELS ${label})
    else()
        gtest_discover_tests(test_${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300 LABELS ${label})
    endif()
endfunction()

# For cross builds: an interface target for headers that are the same on every platform, such as OpenAL's. Only `folder` is
# copied from the build machine, because the folders next to it are specific to that machine. Without the folder, no target
# is created.
function(harmonet_host_headers target folder)
    find_path(HARMONET_HOST_HEADERS_${folder} "${folder}" PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH)
    if(HARMONET_HOST_HEADERS_${folder})
        file(COPY "${HARMONET_HOST_HEADERS_${folder}}/${folder}" DESTINATION "${PROJECT_BINARY_DIR}/headers/${target}")
        add_library(${target} INTERFACE)
        target_include_directories(${target} SYSTEM INTERFACE "${PROJECT_BINARY_DIR}/headers/${target}")
    endif()
endfunction()
