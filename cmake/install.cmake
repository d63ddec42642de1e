# Installs the libraries with the headers of their interface, for find_package and pkg-config.

foreach(header ${ovik_public_headers})
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${ovik_public_dir}/ovik/${header}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ovik/${folder})
endforeach()

set(ovik_config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ovik)
foreach(kind static shared)
  if(TARGET ovik_${kind})
    install(TARGETS ovik_${kind} EXPORT ovik_${kind})
    install(EXPORT ovik_${kind}
      NAMESPACE ovik:: FILE ovik-${kind}-targets.cmake DESTINATION ${ovik_config_dir})
  endif()
endforeach()
include(CMakePackageConfigHelpers)
configure_package_config_file(cmake/ovik-config.cmake.in ovik-config.cmake
  INSTALL_DESTINATION ${ovik_config_dir})
write_basic_package_version_file(ovik-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/ovik-config.cmake
  ${PROJECT_BINARY_DIR}/ovik-config-version.cmake
  DESTINATION ${ovik_config_dir})

# The way from the pkg-config file to the prefix, however deep the libraries' directory is.
file(RELATIVE_PATH ovik_pc_to_prefix
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
# A program that is linked with the static library needs what that is made with.
set(ovik_pc_requires Requires)
if(BUILD_SHARED_LIBS)
  set(ovik_pc_requires Requires.private)
endif()
set(ovik_pc_xlsx "")
if(OVIK_READS_XLSX)
  set(ovik_pc_xlsx " pugixml minizip")
endif()
configure_file(cmake/ovik.pc.in ovik.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ovik.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The documents, in the places that their links have for one another.
install(FILES README.md CHANGELOG.md CITATION.cff CONTRIBUTING.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
foreach(folder annotation data)
  install(FILES ${folder}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/${folder})
endforeach()
install(FILES plots/THIRD_PARTY.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/plots)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
