# Builds the game below the folder WORK, its own target alone, and runs it: the driver that it loads has to be there.
# Then it is installed, and nothing but the game must be in the result.
cmake_path(ABSOLUTE_PATH WORK)
file(REMOVE_RECURSE "${WORK}")
find_program(CCACHE ccache)
if(CCACHE)
    set(launcher "-DCMAKE_CXX_COMPILER_LAUNCHER=${CCACHE}")
endif()

function(run)
    execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY TIMEOUT 1800)
endfunction()

run(${CMAKE_COMMAND} -S "${CMAKE_CURRENT_LIST_DIR}" -B "${WORK}/build" -G Ninja ${launcher})
run(${CMAKE_COMMAND} --build "${WORK}/build" --target game)
run("${WORK}/build/game")
run(${CMAKE_COMMAND} --install "${WORK}/build" --prefix "${WORK}/installed")

file(GLOB_RECURSE installed RELATIVE "${WORK}/installed" "${WORK}/installed/*")
if(NOT installed STREQUAL "bin/game")
    message(FATAL_ERROR "The game's install step installs this: ${installed}")
endif()
