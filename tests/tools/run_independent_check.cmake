# Measures, checks and repairs the COCO file with the tool; independent_check.py verifies each.
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

# repair, then check of what it wrote, and the independent verdict on both.
execute_process(COMMAND "${TOOL}" repair "${COCO}" -o "${WORK_DIR}/repaired.json"
                ERROR_FILE "${WORK_DIR}/repair.err" RESULT_VARIABLE status)
if(status GREATER 1)
    message(FATAL_ERROR "repair exited with ${status}")
endif()
execute_process(COMMAND "${TOOL}" check "${WORK_DIR}/repaired.json"
                OUTPUT_FILE "${WORK_DIR}/repaired_check.txt" RESULT_VARIABLE status)
execute_process(COMMAND "${PYTHON}" "${CHECKER}" --repair "${COCO}" "${WORK_DIR}/repaired.json"
                        "${WORK_DIR}/repair.err" "${WORK_DIR}/repaired_check.txt"
                RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "the independent check of repair disagrees")
endif()
