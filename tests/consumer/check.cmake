# Builds the consumer project against the installed library and nothing else, and runs it. The library is that of
# the build tree BUILT, which is installed below the folder WORK; or that of the archive PACKAGE, which is unpacked
# there. Optional: COMPILER, or a TOOLCHAIN file that says more than that, and an EMULATOR to run what was built.
cmake_path(ABSOLUTE_PATH WORK)
set(prefix "${WORK}/installed")
set(project "${CMAKE_CURRENT_LIST_DIR}/project")
file(REMOVE_RECURSE "${WORK}")

function(run)
    execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY TIMEOUT 600)
endfunction()

if(PACKAGE)
    file(ARCHIVE_EXTRACT INPUT "${PACKAGE}" DESTINATION "${WORK}/unpacked")
    file(GLOB folders "${WORK}/unpacked/*")
    file(RENAME "${folders}" "${prefix}")
else()
    cmake_path(ABSOLUTE_PATH BUILT)
    run(${CMAKE_COMMAND} --install "${BUILT}" --prefix "${prefix}")
endif()

set(options "-DHarmonet_DIR=${prefix}/lib/cmake/Harmonet")
if(NOT EXISTS "${prefix}/lib/cmake/Harmonet")
    set(options "-DCMAKE_PREFIX_PATH=${prefix}")
endif()
if(TOOLCHAIN)
    cmake_path(ABSOLUTE_PATH TOOLCHAIN)
    list(APPEND options "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}")
elseif(COMPILER)
    list(APPEND options "-DCMAKE_CXX_COMPILER=${COMPILER}")
endif()
run(${CMAKE_COMMAND} -S "${project}" -B "${WORK}/build" -G Ninja ${options})
run(${CMAKE_COMMAND} --build "${WORK}/build")

# Where libraries are looked for beside the program, that is where they go.
file(GLOB libraries "${prefix}/bin/*.dll")
if(libraries)
    file(COPY ${libraries} "${prefix}/bin/harmonet" DESTINATION "${WORK}/build")
endif()
file(GLOB consumer "${WORK}/build/consumer" "${WORK}/build/consumer.exe")
run(${EMULATOR} "${consumer}")
