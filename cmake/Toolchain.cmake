# Compiler settings that hold for every target of the project.

option(QUILLO_PRECOMPILE "Precompile the headers that nearly every source includes" OFF)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(launcher ${CCACHE_PROGRAM})
  if(QUILLO_PRECOMPILE)
    # Without these ccache passes by every source that uses a precompiled header.
    set(launcher ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
  endif()
  set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
  set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
endif()

find_program(MOLD_PROGRAM mold)
if(MOLD_PROGRAM)
  add_link_options(-fuse-ld=mold)
endif()

set(QUILLO_SANITIZE "" CACHE STRING "Sanitizers for -fsanitize=, separated by commas; empty for none")
if(QUILLO_SANITIZE)
  add_compile_options(-fsanitize=${QUILLO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QUILLO_SANITIZE})
endif()

add_compile_options(-ffunction-sections -fdata-sections)
add_link_options(-Wl,--gc-sections -Wl,--as-needed)

# Warnings are an interface of their own, so that they reach our targets and not third-party code.
add_library(quillo_warnings INTERFACE)
target_compile_options(quillo_warnings INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    -Wold-style-cast -Wcast-qual -Wunused -Werror>)
target_compile_definitions(quillo_warnings INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH)
