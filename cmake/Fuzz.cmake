# libFuzzer targets: configure this tree with clang (make fuzz does).
# The gate of warnings is the gcc build of make test; here clang's own extra warnings are shown
# but do not stop the fuzz build.
target_compile_options(tavrin_objects PRIVATE -Wno-error)
file(GLOB TAVRIN_FUZZ_TARGETS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/fuzz_*.cpp)
foreach(src ${TAVRIN_FUZZ_TARGETS})
  get_filename_component(name ${src} NAME_WE)
  add_executable(${name} ${src})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/fuzz ${CMAKE_SOURCE_DIR}/tests)
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_libraries(${name} PRIVATE Tavrin_ProcFunction_static)
endforeach()
