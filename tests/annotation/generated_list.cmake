# Runs the generator and compares what it makes with the committed list.
# Variables: PYTHON, ANNOTATION_DIR, OUTPUT.
execute_process(COMMAND ${PYTHON} ${ANNOTATION_DIR}/generate_gene_list.py ${OUTPUT}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${CMAKE_COMMAND} -E compare_files ${OUTPUT} ${ANNOTATION_DIR}/gene_list.cpp
  COMMAND_ERROR_IS_FATAL ANY)
