# One test executable per folder of tests/, linked with the library of the same name.
find_package(GTest REQUIRED)
include(GoogleTest)
file(GLOB support_sources CONFIGURE_DEPENDS tests/support/*.cpp)
if(support_sources)
  add_library(vorda_support STATIC ${support_sources})
  target_link_libraries(vorda_support PUBLIC vorda_input vorda_results GTest::gtest)
  target_include_directories(vorda_support PUBLIC tests/support)
else()
  add_library(vorda_support INTERFACE)
  target_link_libraries(vorda_support INTERFACE vorda_input vorda_results GTest::gtest)
  target_include_directories(vorda_support INTERFACE tests/support)
endif()

foreach(folder base run input results geometry freesurface rankine green assembly solve boundary post cases)
  file(GLOB sources CONFIGURE_DEPENDS tests/${folder}/*.cpp)
  if(sources)
    add_executable(test_${folder} ${sources})
    target_link_libraries(test_${folder} PRIVATE vorda_support vorda_post GTest::gtest_main)
    target_compile_definitions(test_${folder} PRIVATE VORDA_SOURCE_DIR="${CMAKE_CURRENT_SOURCE_DIR}"
                               VORDA_BINARY_DIR="${CMAKE_CURRENT_BINARY_DIR}")
    # A refused allocation is to come back as a null pointer under the sanitizers, too.
    gtest_discover_tests(test_${folder} DISCOVERY_TIMEOUT 60
                         PROPERTIES TIMEOUT 300 ENVIRONMENT ASAN_OPTIONS=allocator_may_return_null=1)
  endif()
endforeach()
if(TARGET test_cases)
  add_dependencies(test_cases vorda vorda-mesh vorda-p2f)
endif()

add_test(NAME layout.includes_go_one_way COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/tests/layout/check_includes.sh)
add_test(NAME layout.glossary_is_current COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/scripts/glossary --check)

# Each example runs and compares itself with what its README promises.
file(GLOB examples CONFIGURE_DEPENDS examples/*/run)
foreach(script ${examples})
  get_filename_component(folder ${script} DIRECTORY)
  get_filename_component(name ${folder} NAME)
  add_test(NAME examples.${name} COMMAND ${script} ${CMAKE_CURRENT_BINARY_DIR})
endforeach()
