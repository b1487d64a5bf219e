# Every folder under src/ is one library; these functions make it, its tests and its programs alike.

include(GoogleTest)

# Libraries and tests share one precompiled header each; a source includes what it uses all the same.
if(QUILLO_PRECOMPILE)
  file(WRITE ${CMAKE_BINARY_DIR}/precompiled.cpp "")
  add_library(quillo_precompiled STATIC ${CMAKE_BINARY_DIR}/precompiled.cpp)
  target_link_libraries(quillo_precompiled PRIVATE Qt6::Core quillo_warnings)
  target_precompile_headers(quillo_precompiled PRIVATE
    <QFuture> <QObject> <QString> <algorithm> <chrono> <functional> <memory> <optional> <vector>)
endif()

# quillo_library(NAME FOLDER_TARGET SOURCES ... PUBLIC ... PRIVATE ...)
# Makes the static library quillo_NAME whose headers are included as "NAME/Header.h".
function(quillo_library NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(quillo_${NAME} STATIC ${ARG_SOURCES})
  set_target_properties(quillo_${NAME} PROPERTIES AUTOMOC ON)
  target_include_directories(quillo_${NAME} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(quillo_${NAME} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE} quillo_warnings)
  if(QUILLO_PRECOMPILE)
    target_precompile_headers(quillo_${NAME} REUSE_FROM quillo_precompiled)
  endif()
endfunction()

# quillo_program(NAME SOURCES ... LINK ...)
function(quillo_program NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${NAME} ${ARG_SOURCES})
  set_target_properties(${NAME} PROPERTIES AUTOMOC ON)
  target_link_libraries(${NAME} PRIVATE ${ARG_LINK} quillo_warnings)
endfunction()

# quillo_test(NAME SOURCES ... LINK ... [LABELS ...])
# A GoogleTest program; every TEST in it is one CTest test. Widgets are tested on the offscreen platform. Under a
# sanitizer, where programs take long to start, the whole program is one.
function(quillo_test NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;LABELS" ${ARGN})
  add_executable(${NAME} ${ARG_SOURCES})
  set_target_properties(${NAME} PROPERTIES AUTOMOC ON)
  target_include_directories(${NAME} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_compile_definitions(${NAME} PRIVATE
    QUILLO_SOURCE_DIR="${CMAKE_SOURCE_DIR}" QUILLO_CORPUS="${QUILLO_CORPUS}")
  target_link_libraries(${NAME} PRIVATE ${ARG_LINK} quillo_test_support quillo_warnings)
  if(QUILLO_PRECOMPILE)
    target_precompile_headers(${NAME} REUSE_FROM quillo_test_precompiled)
  endif()
  if(NOT "corpus" IN_LIST ARG_LABELS)
    add_dependencies(regular_tests ${NAME})
  endif()
  # Some go through hundreds of real files, or are many tests.
  set(timeout 300)
  if(QUILLO_SANITIZE OR "corpus" IN_LIST ARG_LABELS)
    set(timeout 1500)
  endif()
  # One variable only: a list within this list would come out as further properties.
  if(QUILLO_SANITIZE STREQUAL "thread")
    set(environment "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/tsan.supp die_after_fork=0")
  else()
    set(environment "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/lsan.supp")
  endif()
  set(properties TIMEOUT ${timeout} ENVIRONMENT "${environment}")
  if(ARG_LABELS)
    list(APPEND properties LABELS "${ARG_LABELS}")
  endif()
  if(QUILLO_SANITIZE)
    add_test(NAME ${NAME} COMMAND ${NAME})
    set_tests_properties(${NAME} PROPERTIES ${properties})
  else()
    gtest_discover_tests(${NAME} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
  endif()
endfunction()
