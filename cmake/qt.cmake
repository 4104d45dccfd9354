# The windows: the room platform/qt, and the module that tarvel loads when windows are wanted.

ombrey_room(platform_qt platform/qt platform_serial Qt6::Widgets Qt6::PrintSupport)
target_compile_definitions(platform_qt PUBLIC QT_NO_KEYWORDS QT_NO_FOREACH)

add_library(tarvel-qt MODULE ${CMAKE_SOURCE_DIR}/host/main_qt.cpp)
target_link_libraries(tarvel-qt PRIVATE platform_qt platform_system)
if(NOT OMBREY_SANITIZE)
  target_link_options(tarvel-qt PRIVATE -Wl,--no-undefined)
endif()
set_target_properties(tarvel-qt PROPERTIES PREFIX "")

# Drives the windows as an operator would; the tests need it, nothing else does.
find_package(Qt6 6.4 QUIET COMPONENTS Test)
