# SPDX-License-Identifier: MIT
# The compiled module of the Python package. It holds the engine: nothing else needs to be installed
# beside it.
set(PLEXOR_PYTHON_DIR ${PROJECT_SOURCE_DIR}/python/plexor CACHE PATH
    "Where the compiled module of the Python package goes: the folder of the package")

# Debian's own Python unless another one is named: whatever is first in the path may lack NumPy.
if(NOT Python_EXECUTABLE AND NOT PYTHON_EXECUTABLE AND EXISTS /usr/bin/python3)
    set(Python_EXECUTABLE /usr/bin/python3)
endif()
find_package(Python 3.11 REQUIRED COMPONENTS Interpreter Development.Module)
find_package(pybind11 2.10 CONFIG REQUIRED)

file(GLOB plexor_python_sources CONFIGURE_DEPENDS python/src/*.cpp)
pybind11_add_module(plexor_python NO_EXTRAS ${plexor_python_sources})
target_link_libraries(plexor_python PRIVATE plexor_io)
# Other modules of the process may hold an engine of their own.
target_link_options(plexor_python PRIVATE -Wl,--exclude-libs,ALL)
# pybind11's headers are not held to our warnings.
target_include_directories(plexor_python SYSTEM PRIVATE ${pybind11_INCLUDE_DIRS})
set_target_properties(plexor_python PROPERTIES
    OUTPUT_NAME _engine
    LIBRARY_OUTPUT_DIRECTORY ${PLEXOR_PYTHON_DIR}
    CXX_VISIBILITY_PRESET hidden)

# For setup.py: the module alone, into the folder that it makes a package of.
install(TARGETS plexor_python LIBRARY DESTINATION plexor COMPONENT python_module EXCLUDE_FROM_ALL)
