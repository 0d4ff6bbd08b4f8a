# libFuzzer targets, one a file in tests/fuzz.
file(GLOB fuzzers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/fuzz/*.cpp)
foreach(source ${fuzzers})
  get_filename_component(name ${source} NAME_WE)
  add_executable(fuzz_${name} ${source})
  target_include_directories(fuzz_${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_compile_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  target_link_libraries(fuzz_${name} PRIVATE game pack -fsanitize=fuzzer)
endforeach()
