find_package(GTest REQUIRED)
include(GoogleTest)

file(GLOB TAVRIN_TEST_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/*.cpp ${CMAKE_SOURCE_DIR}/tests/support/*.cpp)
add_executable(tavrin_tests ${TAVRIN_TEST_SOURCES})
target_include_directories(tavrin_tests PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(tavrin_tests PRIVATE Tavrin_ProcFunction_static GTest::gtest GTest::gmock GTest::gtest_main)
target_compile_definitions(tavrin_tests PRIVATE
  TAVRIN_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
  TAVRIN_HOST_BINARY="$<TARGET_FILE:tavrin>")
add_dependencies(tavrin_tests tavrin)
gtest_discover_tests(tavrin_tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)

# Loader fuzz targets, built as corpus replayers with the sanitizers of this tree.
file(GLOB TAVRIN_FUZZ_TARGETS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/fuzz_*.cpp)
foreach(src ${TAVRIN_FUZZ_TARGETS})
  get_filename_component(name ${src} NAME_WE)
  add_executable(${name}_replay ${src} ${CMAKE_SOURCE_DIR}/fuzz/replay_main.cpp)
  target_include_directories(${name}_replay PRIVATE ${CMAKE_SOURCE_DIR}/fuzz ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name}_replay PRIVATE Tavrin_ProcFunction_static)
  add_test(NAME ${name}_corpus_replay
           COMMAND ${name}_replay ${CMAKE_SOURCE_DIR}/fuzz/corpus/${name} ${CMAKE_BINARY_DIR}/fuzz-seeds/${name})
  set_tests_properties(${name}_corpus_replay PROPERTIES TIMEOUT 600)
endforeach()
