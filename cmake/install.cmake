# Installs the libraries with the headers of their interface, for find_package and pkg-config.

# What programs may include, and what that includes.
set(ovik_headers
  annotation/gene_func_map.h
  annotation/gene_list.h
  annotation/gene_names.h
  annotation/gene_table.h
  neighbours/data_point.h
  neighbours/euclidean_distance.h
  neighbours/sptree.h
  neighbours/vptree.h
  plots/figure_style.h
  plots/gnuplot.h
  plots/javas.h
  plots/plot_outcome.h
  plots/plotted_run.h
  stats/barnes_hut_forces.h
  stats/centring.h
  results/coordinate_files.h
  stats/dense_affinities.h
  stats/exact_forces.h
  stats/iteration_report.h
  stats/memory_estimate.h
  stats/neighbourhood_quality.h
  stats/normal_deviates.h
  stats/pairwise_distances.h
  results/result_table.h
  results/run_log.h
  stats/run_times.h
  stats/sparse_affinities.h
  stats/sparse_matrix.h
  stats/tsne.h
  util/api.h
  util/console.h
  util/format.h
  util/input_error.h
  util/input_file.h
  util/instruction_set.h
  util/line_blocks.h
  util/malloc_array.h
  util/matrix_line.h
  util/matrix_reader.h
  util/n_choose_k.h
  util/number_field.h
  util/parallel.h
  util/write_all.h
  util/write_string.h)

# Installed, they include one another as <ovik/...> does, so that a file of the same name in the
# user's project cannot take the place of one of them.
foreach(header ${ovik_headers})
  file(READ ${PROJECT_SOURCE_DIR}/${header} text)
  string(REGEX REPLACE "(#include \")([a-z]+/)" "\\1ovik/\\2" text "${text}")
  file(CONFIGURE OUTPUT installed/${header} CONTENT "${text}" @ONLY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${header})
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${PROJECT_BINARY_DIR}/installed/${header}
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
configure_file(cmake/ovik.pc.in ovik.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ovik.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
