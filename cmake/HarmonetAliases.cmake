# The target names of the package, for a project that includes this one with add_subdirectory(). The drivers are loaded at
# run time, so nothing links to them. A dependency of Harmonet::harmonet builds them into bin/, where the library finds
# them.
add_library(harmonet_with_drivers INTERFACE)
target_link_libraries(harmonet_with_drivers INTERFACE harmonet)
foreach(driver harmonet_null harmonet_openal)
    if(TARGET ${driver})
        add_dependencies(harmonet_with_drivers ${driver})
    endif()
endforeach()
add_library(Harmonet::harmonet ALIAS harmonet_with_drivers)
add_library(Harmonet::engine ALIAS harmonet_engine)
add_library(Harmonet::driver_common ALIAS harmonet_driver_common)
