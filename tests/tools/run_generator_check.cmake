# Runs the seeded COCO generator with its defaults and compares with the committed file.
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")
execute_process(COMMAND "${PYTHON}" "${GENERATOR}" --out "${WORK_DIR}/coco.json"
                RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "the generator exited with ${status}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files "${WORK_DIR}/coco.json" "${COMMITTED}"
                RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "the generator no longer writes the committed coco.json")
endif()
