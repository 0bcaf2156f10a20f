# quorlin_test(NAME SOURCES ... LIBRARIES ...): a Qt Test program that runs offscreen in its own home.
function(quorlin_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/tests/support/own_settings.cpp)
  if(QUORLIN_SANITIZE MATCHES thread)
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/tsan_clone.cpp)
  endif()
  target_link_libraries(${name} PRIVATE quorlin_flags Qt6::Test ${ARG_LIBRARIES})
  set(home ${CMAKE_BINARY_DIR}/test-homes/${name})
  target_compile_definitions(${name} PRIVATE QUORLIN_TEST_HOME="${home}")
  file(MAKE_DIRECTORY ${home}/runtime)
  file(CHMOD ${home}/runtime PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    TIMEOUT 120
    ENVIRONMENT_MODIFICATION "PULSE_SERVER=unset:;PULSE_RUNTIME_PATH=unset:"
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_MEDIA_BACKEND=ffmpeg;HOME=${home};CFFIXED_USER_HOME=${home};XDG_RUNTIME_DIR=${home}/runtime;XDG_CONFIG_HOME=${home}/config;XDG_DATA_HOME=${home}/data;TSAN_OPTIONS=ignore_noninstrumented_modules=1:suppressions=${PROJECT_SOURCE_DIR}/tests/tsan.supp;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp")
endfunction()
