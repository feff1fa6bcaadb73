# The Qt the tool builds on: ZV_QT=5 (Qt 5.15, the default) or ZV_QT=6 (Qt
# 6.4 and later), from the same sources. Our CMake files link Qt's
# versionless targets (Qt::Core, Qt::Widgets, Qt::lrelease) and call its
# versionless functions (qt_add_resources), which both provide. Under 6 the
# Qt 5 names (Qt5::Core, qt5_add_resources) are kept as aliases, so that a
# line written for 5 still builds.
set(ZV_QT 5 CACHE STRING "Qt major version to build with: 5 or 6")
set_property(CACHE ZV_QT PROPERTY STRINGS 5 6)
if(NOT ZV_QT MATCHES "^[56]$")
  message(FATAL_ERROR "ZV_QT is ${ZV_QT}: it is 5 or 6")
endif()

set(ZV_QT_COMPONENTS Core Gui Widgets Network LinguistTools Test)
if(ZV_QT EQUAL 5)
  find_package(Qt5 5.15 REQUIRED COMPONENTS ${ZV_QT_COMPONENTS})
else()
  find_package(Qt6 6.4 REQUIRED COMPONENTS ${ZV_QT_COMPONENTS})
  foreach(component Core Gui Widgets Network Test)
    add_library(Qt5::${component} ALIAS Qt6::${component})
  endforeach()
  add_executable(Qt5::lrelease ALIAS Qt6::lrelease)
  macro(qt5_add_resources)
    qt6_add_resources(${ARGV})
  endmacro()
endif()

