# One benchmark executable per folder, each printing ratios to a yardstick of the same run.
find_package(benchmark REQUIRED)
file(GLOB bench_sources CONFIGURE_DEPENDS bench/bench_*.cpp)
foreach(source ${bench_sources})
  get_filename_component(name ${source} NAME_WE)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE vorda_input vorda_results benchmark::benchmark)
  target_include_directories(${name} PRIVATE tests/support)
endforeach()
