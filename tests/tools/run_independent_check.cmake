# Measures and checks the COCO file with the tool, then has independent_check.py verify both.
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")
execute_process(COMMAND "${TOOL}" measure "${COCO}" --json OUTPUT_FILE "${WORK_DIR}/measure.json"
                RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "measure exited with ${status}")
endif()
execute_process(COMMAND "${TOOL}" check "${COCO}" OUTPUT_FILE "${WORK_DIR}/check.txt"
                RESULT_VARIABLE status)
if(NOT status EQUAL 1)
    message(FATAL_ERROR "check exited with ${status}, expected 1 (the file crosses on purpose)")
endif()
execute_process(COMMAND "${PYTHON}" "${CHECKER}" "${COCO}" "${WORK_DIR}/measure.json"
                        "${WORK_DIR}/check.txt" RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "the independent computation disagrees")
endif()
