# What leaves the build: the plug-in, the station and the terminal. A program is there once its main file is.

file(GLOB factory CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/core/main_plugin.cpp)
if(factory)
  add_library(PlgInOmbrey MODULE ${factory})
  target_link_libraries(PlgInOmbrey PRIVATE core)
  set_target_properties(PlgInOmbrey PROPERTIES PREFIX "")
endif()

file(GLOB station CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/host/main.cpp)
if(station)
  add_executable(tarvel ${station})
  target_link_libraries(tarvel PRIVATE host)
  if(TARGET PlgInOmbrey)
    add_dependencies(tarvel PlgInOmbrey)
  endif()
endif()

file(GLOB rg80_main CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/terminal/main.cpp)
if(rg80_main)
  add_executable(rg80 ${rg80_main})
  target_link_libraries(rg80 PRIVATE terminal)
endif()

# What ./run needs.
add_custom_target(programs)
foreach(program PlgInOmbrey tarvel tarvel-qt rg80)
  if(TARGET ${program})
    add_dependencies(programs ${program})
  endif()
endforeach()
