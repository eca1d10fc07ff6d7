# Runs cntrtool once and checks what it did. Variables (-D):
#   TOOL, ARGS (items separated by "|"), WORK_DIR (the run's directory, emptied first), EXPECT_EXIT,
#   COMPARE (the compare_output program) and optionally:
#   INPUTS           files copied into WORK_DIR first (the runs name them without a directory)
#   STDOUT_REGEX     a regular expression that standard output must match
#   STDOUT_NOT_REGEX a regular expression that standard output must not match
#   EXPECTED_STDOUT  a file that standard output must match (compare_output's rules)
#   STDERR_REGEX     a regular expression that standard error must match
#   STDERR_EMPTY     ON when standard error must be empty
#   ABSENT           a file (relative to WORK_DIR) that must not exist afterwards
#   OUTPUT           a file the run must write, and EXPECTED_OUTPUT what it must match
#   COUNTS           "REGEX=N|REGEX=N..." occurrences that OUTPUT must hold
#   THEN_ARGS and THEN_ followed by any of the above: a second run (on what the first wrote)
cmake_minimum_required(VERSION 3.25)

# Lists arrive with "|" between their items (a ";" would split the test's command line).
foreach(list_var IN ITEMS ARGS THEN_ARGS INPUTS)
    if(DEFINED ${list_var})
        string(REPLACE "|" ";" ${list_var} "${${list_var}}")
    endif()
endforeach()

file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")

function(fail message)
    message(FATAL_ERROR "${message}\nstdout:\n${out}\nstderr:\n${err}")
endfunction()

function(compare expected actual_text what)
    file(WRITE "${WORK_DIR}/${what}.actual" "${actual_text}")
    execute_process(COMMAND "${COMPARE}" "${expected}" "${WORK_DIR}/${what}.actual"
                    RESULT_VARIABLE status ERROR_VARIABLE difference)
    if(NOT status EQUAL 0)
        fail("${what} does not match ${expected}: ${difference}")
    endif()
endfunction()

# One run of the tool; PREFIX "" for the first, "THEN_" for the second.
function(run_step prefix)
    execute_process(COMMAND "${TOOL}" ${${prefix}ARGS} WORKING_DIRECTORY "${WORK_DIR}"
                    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
    set(out "${out}" PARENT_SCOPE)
    set(err "${err}" PARENT_SCOPE)
    if(NOT status STREQUAL "${${prefix}EXPECT_EXIT}")
        fail("${prefix}exit status ${status}, expected ${${prefix}EXPECT_EXIT}")
    endif()
    if(DEFINED ${prefix}EXPECTED_STDOUT)
        compare("${${prefix}EXPECTED_STDOUT}" "${out}" ${prefix}stdout)
    endif()
    if(DEFINED ${prefix}STDOUT_REGEX AND NOT out MATCHES "${${prefix}STDOUT_REGEX}")
        fail("${prefix}standard output does not match '${${prefix}STDOUT_REGEX}'")
    endif()
    if(DEFINED ${prefix}STDOUT_NOT_REGEX AND out MATCHES "${${prefix}STDOUT_NOT_REGEX}")
        fail("${prefix}standard output matches '${${prefix}STDOUT_NOT_REGEX}'")
    endif()
    if(DEFINED ${prefix}STDERR_REGEX AND NOT err MATCHES "${${prefix}STDERR_REGEX}")
        fail("${prefix}standard error does not match '${${prefix}STDERR_REGEX}'")
    endif()
    if(${prefix}STDERR_EMPTY AND NOT err STREQUAL "")
        fail("${prefix}standard error is not empty")
    endif()
    if(DEFINED ${prefix}ABSENT)
        file(GLOB left "${WORK_DIR}/${${prefix}ABSENT}*")
        if(left)
            fail("${prefix}files left behind: ${left}")
        endif()
    endif()
    if(DEFINED ${prefix}OUTPUT)
        if(NOT EXISTS "${WORK_DIR}/${${prefix}OUTPUT}")
            fail("${${prefix}OUTPUT} was not written")
        endif()
        file(READ "${WORK_DIR}/${${prefix}OUTPUT}" written)
        if(DEFINED ${prefix}EXPECTED_OUTPUT)
            compare("${${prefix}EXPECTED_OUTPUT}" "${written}" ${prefix}output)
        endif()
        if(DEFINED ${prefix}COUNTS)
            string(REPLACE "|" ";" counts "${${prefix}COUNTS}")
            foreach(pair IN LISTS counts)
                string(REGEX MATCH "^(.*)=([0-9]+)$" _ "${pair}")
                set(pattern "${CMAKE_MATCH_1}")
                set(wanted "${CMAKE_MATCH_2}")
                string(REGEX MATCHALL "${pattern}" found "${written}")
                list(LENGTH found n)
                if(NOT n EQUAL wanted)
                    fail("${${prefix}OUTPUT} holds ${n} matches of '${pattern}', expected ${wanted}")
                endif()
            endforeach()
        endif()
    endif()
endfunction()

foreach(input IN LISTS INPUTS)
    file(COPY "${input}" DESTINATION "${WORK_DIR}")
endforeach()
run_step("")
if(DEFINED THEN_ARGS)
    run_step(THEN_)
endif()
