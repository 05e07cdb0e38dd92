# One test executable per folder of tests/, linked with the library of the same name.
find_package(GTest REQUIRED)
include(GoogleTest)
# What the tests of all folders share: the whole solver, and helpers that are headers.
add_library(vorda_support INTERFACE)
target_link_libraries(vorda_support INTERFACE vorda_run vorda_post GTest::gtest)
target_include_directories(vorda_support INTERFACE tests/support)

foreach(folder base mesh state input results post geometry freesurface rankine green assembly solve boundary exchange modes case cases)
  file(GLOB sources CONFIGURE_DEPENDS tests/${folder}/*.cpp)
  add_executable(test_${folder} ${sources})
  target_link_libraries(test_${folder} PRIVATE vorda_support GTest::gtest_main)
  target_compile_definitions(test_${folder} PRIVATE VORDA_SOURCE_DIR="${CMAKE_CURRENT_SOURCE_DIR}"
                             VORDA_BINARY_DIR="${CMAKE_CURRENT_BINARY_DIR}")
  # A refused allocation is to come back as a null pointer under the sanitizers, too.
  gtest_discover_tests(test_${folder} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT 300 ENVIRONMENT ASAN_OPTIONS=allocator_may_return_null=1)
endforeach()
foreach(folder exchange cases)
  target_link_libraries(test_${folder} PRIVATE vorda_exchange)
endforeach()
# Tests of formats whose library the build lacks are skipped.
foreach(library NETCDF HDF5 GMSH ASSIMP)
  if(VORDA_${library}_INCLUDE AND VORDA_${library}_LIBRARY)
    target_compile_definitions(vorda_support INTERFACE VORDA_WITH_${library})
  endif()
endforeach()
target_link_libraries(test_modes PRIVATE vorda_modes)
target_link_libraries(test_case PRIVATE vorda_case)
add_dependencies(test_case vorda-run vorda-modes)
if(TARGET vorda-mpi)
  add_dependencies(test_cases vorda-mpi vorda-study)
endif()
foreach(folder mesh post exchange cases)
  add_dependencies(test_${folder} vorda vorda-mesh vorda-modes vorda-p2f)
endforeach()
# Allocations are refused by a library in front of the C library; the sanitizers have their own there.
if(NOT VORDA_SANITIZE)
  add_library(refuse_allocation SHARED tests/hooks/refuse_allocation.cpp)
  add_dependencies(test_cases refuse_allocation)
  target_compile_definitions(test_cases PRIVATE VORDA_REFUSING="$<TARGET_FILE:refuse_allocation>")
endif()

add_test(NAME layout.includes_follow_the_links
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/tests/layout/check_includes ${VORDA_EDGES})
add_test(NAME layout.messages_are_explained COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/tests/layout/check_messages)
add_test(NAME layout.links_have_targets COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/tests/layout/check_links)
add_test(NAME layout.job_scripts_are_sound COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/tests/layout/check_jobs)
add_test(NAME layout.picture_is_current COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/scripts/draw_links --check)
add_test(NAME layout.glossary_is_current COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/scripts/glossary --check)

# Each example runs and compares itself with what its README promises.
file(GLOB examples CONFIGURE_DEPENDS examples/*/run)
foreach(script ${examples})
  get_filename_component(folder ${script} DIRECTORY)
  get_filename_component(name ${folder} NAME)
  add_test(NAME examples.${name} COMMAND ${script} ${CMAKE_CURRENT_BINARY_DIR})
  set_tests_properties(examples.${name} PROPERTIES SKIP_REGULAR_EXPRESSION "install it and build again")
endforeach()
if(NOT VORDA_SANITIZE)
  add_test(NAME layout.what_is_installed_serves COMMAND tests/layout/check_install ${CMAKE_CURRENT_BINARY_DIR}
           WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
endif()
