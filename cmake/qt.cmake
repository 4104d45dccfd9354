# The windows: the room platform/qt, and the module that tarvel loads when windows are wanted.

ombrey_room(platform_qt platform/qt platform_loop Qt6::Widgets Qt6::PrintSupport)
target_compile_definitions(platform_qt PUBLIC QT_NO_KEYWORDS QT_NO_FOREACH)

find_package(Qt6 6.4 QUIET COMPONENTS Test)
