# Compiler flags of all targets, which get them by linking quorlin_flags.
add_library(quorlin_flags INTERFACE)
target_compile_features(quorlin_flags INTERFACE cxx_std_20)
target_include_directories(quorlin_flags INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(quorlin_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Wold-style-cast -Woverloaded-virtual -Wcast-qual -Wformat=2 -Wundef
  $<$<NOT:$<BOOL:${QUORLIN_ALLOW_WARNINGS}>>:-Werror>)
target_compile_definitions(quorlin_flags INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_KEYWORDS QT_NO_FOREACH QT_STRICT_ITERATORS
  QT_DISABLE_DEPRECATED_BEFORE=0x060400 QT_WARN_DEPRECATED_UP_TO=0x060400)

set(QUORLIN_SANITIZE "" CACHE STRING "Sanitizers for every target, for example address,undefined")
if(QUORLIN_SANITIZE)
  target_compile_options(quorlin_flags INTERFACE
    -fsanitize=${QUORLIN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(quorlin_flags INTERFACE -fsanitize=${QUORLIN_SANITIZE})
endif()

# One static library per folder; LIBRARIES names those of the folders that it may use.
function(quorlin_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC quorlin_flags ${ARG_LIBRARIES})
endfunction()
