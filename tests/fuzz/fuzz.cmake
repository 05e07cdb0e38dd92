# Fuzz targets of the readers (libFuzzer: clang only), each with its first inputs in tests/fuzz/NAME/.
file(GLOB fuzz_sources CONFIGURE_DEPENDS tests/fuzz/fuzz_*.cpp)
foreach(source ${fuzz_sources})
  get_filename_component(name ${source} NAME_WE)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE vorda_run vorda_post)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endforeach()
