# Runs the generator and compares what it makes with the committed list.
# Variables: PYTHON, ANNOTATION_DIR, GENERATOR, LIST, OUTPUT.
execute_process(COMMAND ${PYTHON} ${ANNOTATION_DIR}/${GENERATOR} ${OUTPUT}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${CMAKE_COMMAND} -E compare_files ${OUTPUT} ${ANNOTATION_DIR}/${LIST}
  COMMAND_ERROR_IS_FATAL ANY)
