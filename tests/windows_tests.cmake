# What the tests need on a running Windows, and what is tested only there.

# A component to register; beside the tests, as a product's components lie beside it.
add_library(test_component MODULE platform/windows/test_component.cpp)
target_link_libraries(test_component PRIVATE quarnel_flags)
# 32-bit entries are looked up without the decoration of their names.
target_link_options(test_component PRIVATE -Wl,--kill-at)
set_target_properties(test_component PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY
                                                          ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
add_dependencies(platform_test test_component)

get_property(unitTests DIRECTORY PROPERTY TESTS)
set(runner ${CMAKE_CROSSCOMPILING_EMULATOR})

# The programs as a user runs them. Last, as what they plant would be found by other tests.
add_test(NAME programs COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/windows/programs_test.sh ${runner}
                               ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
set_tests_properties(programs PROPERTIES DEPENDS "${unitTests}" SKIP_RETURN_CODE 77)

# Every test works on the same machine, which is made anew for each run and belongs to this build.
if(runner)
  add_test(NAME machine-begin COMMAND ${runner} --new)
  add_test(NAME machine-end COMMAND ${runner} --remove)
  set_tests_properties(machine-begin PROPERTIES FIXTURES_SETUP machine)
  set_tests_properties(machine-end PROPERTIES FIXTURES_CLEANUP machine)
  set_tests_properties(machine-begin machine-end PROPERTIES TIMEOUT 300)
  set_tests_properties(machine-begin machine-end ${unitTests} programs
                       PROPERTIES ENVIRONMENT QUARNEL_WINEPREFIX=${CMAKE_BINARY_DIR}/wine
                                  SKIP_RETURN_CODE 77)
  set_tests_properties(${unitTests} programs PROPERTIES FIXTURES_REQUIRED machine)
endif()
set(machineTests ${unitTests} programs)
# Those that never ask the machine.
list(REMOVE_ITEM machineTests base controls console)
set_tests_properties(${machineTests} PROPERTIES RESOURCE_LOCK machine)
set_tests_properties(programs PROPERTIES TIMEOUT 120)

# Nothing that is built may need more than the oldest system has.
get_property(built DIRECTORY PROPERTY BUILDSYSTEM_TARGETS)
get_property(programs DIRECTORY ${CMAKE_SOURCE_DIR}/src/programs PROPERTY BUILDSYSTEM_TARGETS)
set(files)
foreach(target IN LISTS built programs)
  get_target_property(type ${target} TYPE)
  if(type MATCHES "EXECUTABLE|MODULE_LIBRARY")
    list(APPEND files $<TARGET_FILE:${target}>)
  endif()
endforeach()
add_test(NAME imports COMMAND ${CMAKE_SOURCE_DIR}/tools/check-imports ${files})
