# What is installed: programs, documents, examples, the reader for Python, and the reader of the hand-over file as a library
# (find_package(vorda) gives vorda::vorda_post).
include(GNUInstallDirs)
set(CMAKE_INSTALL_DOCDIR ${CMAKE_INSTALL_DATADIR}/doc/vorda)
set(VORDA_PROGRAMS vorda vorda-run vorda-mesh vorda-modes vorda-p2f)
if(TARGET vorda-mpi)
  list(APPEND VORDA_PROGRAMS vorda-mpi vorda-study)
endif()
# Debian chooses among several builds of OpenBLAS under one name: ours has to be that for OpenMP.
get_filename_component(openblas_folder ${VORDA_OPENBLAS} DIRECTORY)
if(openblas_folder MATCHES openblas-openmp)
  set_target_properties(${VORDA_PROGRAMS} PROPERTIES INSTALL_RPATH ${openblas_folder})
endif()
install(TARGETS ${VORDA_PROGRAMS} RUNTIME)
foreach(program ${VORDA_PROGRAMS})
  install(FILES tools/support/completion.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${program})
endforeach()
install(FILES README.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS)
install(FILES python/vorda.py DESTINATION lib/python3/dist-packages)

set(VORDA_PUBLIC base mesh state geometry rankine green post)
foreach(folder ${VORDA_PUBLIC})
  install(TARGETS vorda_${folder} EXPORT vorda ARCHIVE)
  install(DIRECTORY src/${folder} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vorda FILES_MATCHING PATTERN "*.hpp"
          PATTERN case_toml.hpp EXCLUDE) # needs toml++
endforeach()
install(TARGETS vorda_flags EXPORT vorda)
install(EXPORT vorda NAMESPACE vorda:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vorda FILE vorda-targets.cmake)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/vorda-config.cmake
     "include(CMakeFindDependencyMacro)\nfind_dependency(OpenMP)\ninclude(\${CMAKE_CURRENT_LIST_DIR}/vorda-targets.cmake)\n")
include(CMakePackageConfigHelpers)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/vorda-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vorda-config.cmake ${CMAKE_CURRENT_BINARY_DIR}/vorda-config-version.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vorda)

# Manual pages from the help of the programs.
find_program(VORDA_HELP2MAN help2man)
if(VORDA_HELP2MAN)
  foreach(program ${VORDA_PROGRAMS})
    set(page ${CMAKE_CURRENT_BINARY_DIR}/${program}.1)
    add_custom_command(OUTPUT ${page} DEPENDS ${program} VERBATIM
                       COMMAND ${VORDA_HELP2MAN} --no-info --output=${page} $<TARGET_FILE:${program}>)
    list(APPEND pages ${page})
  endforeach()
  add_custom_target(manual ALL DEPENDS ${pages})
  install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

# cpack makes a Debian package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vorda)
set(CPACK_PACKAGE_CONTACT "The VORDA authors")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libopenblas0-openmp")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libassimp5, libgmsh4.8, gnuplot-nox, python3-numpy")
set(CPACK_DEBIAN_PACKAGE_PROVIDES "python3-vorda")
set(CPACK_STRIP_FILES ON)
include(CPack)
