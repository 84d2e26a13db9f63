# What the tests need on a running Windows, and what is tested only there.

# A component to register; beside the tests, as a product's components lie beside it.
add_library(test_component MODULE platform/windows/test_component.cpp)
target_link_libraries(test_component PRIVATE quarnel_flags)
# 32-bit entries are looked up without the decoration of their names.
target_link_options(test_component PRIVATE -Wl,--kill-at)
set_target_properties(test_component PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY
                                                          ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
add_dependencies(platform_test test_component)
