# Precompiled headers. Most of the time of a small file goes into reading the headers of the standard library,
# Qt and GoogleTest, so those are read once for each kind of target. Files still include what they use.

set(standard_headers <algorithm> <array> <cstdint> <functional> <memory> <optional> <span> <string>
    <string_view> <system_error> <utility> <vector>)
set(widget_headers <QApplication> <QFontMetricsF> <QKeyEvent> <QMessageBox> <QMouseEvent> <QPainter> <QPointer>
    <QTimer> <QWidget>)
set(test_headers <gmock/gmock.h> <gtest/gtest.h>)

# add_precompiled(<kind> LINKS library... HEADERS header...) makes precompiled_<kind>.
function(add_precompiled kind)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "LINKS;HEADERS")
  set(source ${CMAKE_BINARY_DIR}/precompiled/${kind}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "")
  add_library(precompiled_${kind} OBJECT EXCLUDE_FROM_ALL ${source})
  target_link_libraries(precompiled_${kind} PRIVATE ${ARG_LINKS})
  target_precompile_headers(precompiled_${kind} PRIVATE ${ARG_HEADERS})
endfunction()

add_precompiled(plain LINKS source_options HEADERS ${standard_headers})
add_precompiled(core LINKS source_options Qt6::Core HEADERS ${standard_headers})
add_precompiled(widgets LINKS source_options Qt6::Widgets HEADERS ${standard_headers} ${widget_headers})
if(BUILD_TESTING)
  add_precompiled(plain_test LINKS test_options GTest::gmock HEADERS ${standard_headers} ${test_headers})
  add_precompiled(core_test LINKS test_options Qt6::Core GTest::gmock HEADERS ${standard_headers} ${test_headers})
  add_precompiled(widgets_test LINKS test_options Qt6::Widgets GTest::gmock
                  HEADERS ${standard_headers} ${widget_headers} ${test_headers})
endif()

# use_precompiled(<target> <suffix> library...) lets the target use the headers that suit its libraries.
function(use_precompiled target suffix)
  set(kind plain)
  if("Qt6::Widgets" IN_LIST ARGN)
    set(kind widgets)
  elseif("Qt6::Core" IN_LIST ARGN)
    set(kind core)
  endif()
  target_precompile_headers(${target} REUSE_FROM precompiled_${kind}${suffix})
endfunction()
