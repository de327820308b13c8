# The windows themselves, with wxWidgets: GTK 3 on Linux, native controls on Windows.

set(HITWICK_WX_FOLDER "" CACHE PATH
  "wxWidgets for the target of a cross-build; empty: one that tools/wx_windows.sh builds")
if(CMAKE_CROSSCOMPILING)
  set(wx_folder ${HITWICK_WX_FOLDER})
  if(NOT wx_folder)
    execute_process(COMMAND ${PROJECT_SOURCE_DIR}/tools/wx_windows.sh
      OUTPUT_VARIABLE wx_folder OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  endif()
  list(APPEND CMAKE_FIND_ROOT_PATH ${wx_folder})
  set(wxWidgets_CONFIG_EXECUTABLE ${wx_folder}/bin/wx-config CACHE FILEPATH
    "Of a wxWidgets for the target system" FORCE)
endif()
find_package(wxWidgets 3.2 REQUIRED COMPONENTS core base)
add_library(hitwick_wx INTERFACE)
target_include_directories(hitwick_wx SYSTEM INTERFACE ${wxWidgets_INCLUDE_DIRS})
target_compile_definitions(hitwick_wx INTERFACE ${wxWidgets_DEFINITIONS})
target_compile_options(hitwick_wx INTERFACE ${wxWidgets_CXX_FLAGS})
target_link_directories(hitwick_wx INTERFACE ${wxWidgets_LIBRARY_DIRS})
target_link_libraries(hitwick_wx INTERFACE ${wxWidgets_LIBRARIES})
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  # The toolkit's headers look at a window's type while it is being destroyed.
  target_compile_options(hitwick_wx INTERFACE -fno-sanitize=vptr)
endif()
if(WIN32)
  set(toolkit msw)
else()
  set(toolkit gtk)
  # Only for what wxWidgets does not offer: accessible names, whether there is a display.
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(GTK REQUIRED IMPORTED_TARGET gtk+-3.0)
  target_link_libraries(hitwick_wx INTERFACE PkgConfig::GTK)
endif()

add_library(hitwick_ui OBJECT
  accessible_${toolkit}.cpp
  controls.cpp
  folder_box.cpp
  frmConfig.cpp
  frmConfig_layout.cpp
  frmFilter.cpp
  frmFilters.cpp
  frmNewUsageFolder.cpp
  frmOnDemand.cpp
  frmSite.cpp
  pictures.cpp
  shown_text.cpp
  toolkit_${toolkit}.cpp
  window_boxes.cpp
  wx_windows.cpp)
set_target_properties(hitwick_ui PROPERTIES POSITION_INDEPENDENT_CODE ON)
target_link_libraries(hitwick_ui PRIVATE hitwick_hardening hitwick_flags PUBLIC hitwick_wx hitwick_ui_logic)

if(CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  # The toolkit's header that remembers a window's place casts the window while it is destroyed.
  set_source_files_properties(controls.cpp PROPERTIES COMPILE_OPTIONS -fno-sanitize=vptr)
endif()

if(NOT WIN32)
  # What the program loads when a window is wanted. All but the windows themselves is in the
  # program and found there.
  add_library(hitwick_windows MODULE $<TARGET_OBJECTS:hitwick_ui>)
  set_target_properties(hitwick_windows PROPERTIES
    PREFIX "" OUTPUT_NAME hitwick-windows LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
  target_link_libraries(hitwick_windows PRIVATE hitwick_wx)
endif()

if(HITWICK_TESTS AND NOT WIN32)
  add_executable(windows_tests windows_smoke_test.cpp)
  target_link_libraries(windows_tests PRIVATE hitwick_flags hitwick_ui GTest::gmock GTest::gtest_main)
  add_test(NAME ui.windows
    COMMAND ${PROJECT_SOURCE_DIR}/tests/ui/with_display.sh $<TARGET_FILE:windows_tests>)
  set_tests_properties(ui.windows PROPERTIES
    LABELS ui
    ENVIRONMENT LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/ui/toolkit_leaks.txt)
endif()
