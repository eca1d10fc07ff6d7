# The Python package (python/): the option CNTR_PYTHON, on by default when pybind11, the Python
# development files and numpy are found. The sanitizer, fuzz, bench and release presets turn it
# off.
#
# The interpreter is Debian's /usr/bin/python3 unless Python3_EXECUTABLE names another (pip
# passes its own): a python3 earlier on the PATH (pyenv's, say) has neither numpy nor Debian's
# packages, and the module must be built for the interpreter that runs the tests.
if(NOT DEFINED Python3_EXECUTABLE AND EXISTS /usr/bin/python3)
    set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "The Python interpreter")
endif()

set(_cntr_python_found OFF)
if(NOT DEFINED CNTR_PYTHON OR CNTR_PYTHON)
    find_package(Python3 3.8 QUIET COMPONENTS Interpreter Development.Module NumPy)
    if(Python3_FOUND)
        # pybind11 uses the interpreter found above (its FindPython mode).
        find_package(pybind11 2.6 CONFIG QUIET)
    endif()
    if(Python3_FOUND AND pybind11_FOUND)
        set(_cntr_python_found ON)
    endif()
endif()

option(CNTR_PYTHON "Build the Python package cntr (python/) and its tests" ${_cntr_python_found})
if(CNTR_PYTHON AND NOT _cntr_python_found)
    message(FATAL_ERROR "CNTR_PYTHON needs pybind11 (pybind11-dev), the Python development files "
                        "(python3-dev) and numpy (python3-numpy) for ${Python3_EXECUTABLE}; "
                        "tools/bootstrap tests installs them")
endif()
if(CNTR_PYTHON)
    message(STATUS "Python package: on, for ${Python3_EXECUTABLE} (${Python3_VERSION})")
    # Where the package is laid out in the build tree: PYTHONPATH=<this> imports it.
    set(CNTR_PYTHON_DIR ${PROJECT_BINARY_DIR}/python)
else()
    message(STATUS "Python package: off")
endif()
