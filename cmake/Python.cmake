# The Python package tavrin: the native module _tavrin and the pure-Python layer, put together
# in ${CMAKE_BINARY_DIR}/python/tavrin so that PYTHONPATH=${CMAKE_BINARY_DIR}/python imports it.
find_package(Python3 REQUIRED COMPONENTS Interpreter Development.Module)
find_package(pybind11 CONFIG REQUIRED)

file(GLOB TAVRIN_PYTHON_NATIVE CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/python/src/*.cpp)
pybind11_add_module(_tavrin MODULE ${TAVRIN_PYTHON_NATIVE})
target_link_libraries(_tavrin PRIVATE tavrin_host)
set(TAVRIN_PYTHON_PACKAGE ${CMAKE_BINARY_DIR}/python/tavrin)
set_target_properties(_tavrin PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${TAVRIN_PYTHON_PACKAGE})

file(GLOB TAVRIN_PYTHON_LAYER CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/python/tavrin/*.py)
# The layer is copied again when a file of it changes.
add_custom_target(tavrin_python_layer ALL
  COMMAND ${CMAKE_COMMAND} -E make_directory ${TAVRIN_PYTHON_PACKAGE}
  COMMAND ${CMAKE_COMMAND} -E copy_if_different ${TAVRIN_PYTHON_LAYER} ${TAVRIN_PYTHON_PACKAGE}
  DEPENDS ${TAVRIN_PYTHON_LAYER})
