# Installs the build tree BUILT below the folder WORK, and configures, builds and runs the consumer project there
# against what was installed and nothing else. Optional: COMPILER, or a TOOLCHAIN file that says more than that, and
# an EMULATOR to run what was built.
cmake_path(ABSOLUTE_PATH BUILT)
cmake_path(ABSOLUTE_PATH WORK)
set(prefix "${WORK}/installed")
set(project "${CMAKE_CURRENT_LIST_DIR}/project")
file(REMOVE_RECURSE "${WORK}")

function(run)
    execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(compiler_option)
if(TOOLCHAIN)
    set(compiler_option "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}")
elseif(COMPILER)
    set(compiler_option "-DCMAKE_CXX_COMPILER=${COMPILER}")
endif()
run(${CMAKE_COMMAND} --install "${BUILT}" --prefix "${prefix}")
run(${CMAKE_COMMAND} -S "${project}" -B "${WORK}/build" -G Ninja "-DCMAKE_PREFIX_PATH=${prefix}" ${compiler_option})
run(${CMAKE_COMMAND} --build "${WORK}/build")
run(${EMULATOR} "${WORK}/build/consumer")
