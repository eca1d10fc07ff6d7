# Build-tree-only flags for the project's own targets. They live on an interface target that
# our targets link privately, so users of the installed libraries never inherit -Werror or the
# sanitizers.
add_library(cntr_flags INTERFACE)
target_compile_options(cntr_flags INTERFACE
    -Wall -Wextra -Wpedantic -Werror
    # Results must be bit-for-bit the same on every machine and compiler: no fused multiply-add
    # contraction, and never fast-math.
    -ffp-contract=off -fno-fast-math)

if(CNTR_SANITIZE AND CNTR_SANITIZE_THREAD)
    message(FATAL_ERROR "the thread sanitizer does not combine with the address sanitizer")
endif()
if(CNTR_SANITIZE)
    set(_cntr_san -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(CNTR_SANITIZE_THREAD)
    set(_cntr_san -fsanitize=thread -fno-omit-frame-pointer)
endif()
if(_cntr_san)
    target_compile_options(cntr_flags INTERFACE ${_cntr_san})
    target_link_options(cntr_flags INTERFACE ${_cntr_san})
endif()

# The fuzz build: every target of ours carries libFuzzer's coverage instrumentation on top of the
# sanitizers; only the fuzz targets themselves link the fuzzer's driver (-fsanitize=fuzzer).
if(CNTR_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        message(FATAL_ERROR "CNTR_FUZZ needs clang (libFuzzer); use the fuzz preset")
    endif()
    if(NOT CNTR_SANITIZE)
        message(FATAL_ERROR "CNTR_FUZZ needs CNTR_SANITIZE")
    endif()
    target_compile_options(cntr_flags INTERFACE -fsanitize=fuzzer-no-link)
    target_link_options(cntr_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# cntr_add_library(name SOURCES ... HEADERS ...): a shared library of this project with its public
# headers in a file set rooted at the source tree, so that they are included as <dir/header.h>.
function(cntr_add_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS" ${ARGN})
    add_library(${name} SHARED ${ARG_SOURCES})
    add_library(cntr::${name} ALIAS ${name})
    target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARG_HEADERS})
    target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:cntr_flags>)
    if(NOT CNTR_SANITIZE AND NOT CNTR_SANITIZE_THREAD)  # the sanitizer runtimes live in the executables
        target_link_options(${name} PRIVATE LINKER:--no-undefined)
    endif()
    set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION}
                                             SOVERSION ${PROJECT_VERSION_MAJOR})
endfunction()
