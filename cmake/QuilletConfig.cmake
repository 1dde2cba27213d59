# find_package(Quillet) comes here. The libraries need nothing but the C and C++ ones.
include(${CMAKE_CURRENT_LIST_DIR}/QuilletTargets.cmake)
