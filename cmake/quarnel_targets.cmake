# What every target of the project shares: warnings, sanitizers, hardening, and how a folder
# becomes a library.

add_library(quarnel_flags INTERFACE)
target_compile_options(
  quarnel_flags INTERFACE -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion
                          -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wunused
                          -Wnull-dereference -Wdouble-promotion -Wimplicit-fallthrough
                          # Designated initialisers leave the rest at its default on purpose.
                          -Wno-missing-field-initializers)
target_include_directories(quarnel_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)
find_program(LLD ld.lld)
if(LLD AND NOT CMAKE_CROSSCOMPILING)
  # Links in a fraction of the time.
  target_link_options(quarnel_flags INTERFACE -fuse-ld=lld)
endif()
if(QUARNEL_SANITIZE)
  # Null-dereference analysis reports false finds inside instrumented library code.
  target_compile_options(quarnel_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer -Wno-null-dereference
                                                 -Wno-maybe-uninitialized)
  target_link_options(quarnel_flags INTERFACE -fsanitize=address,undefined)
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_definitions(quarnel_flags INTERFACE _FORTIFY_SOURCE=2)
  # GCC 12 takes inlined string code for overlapping copies, and an alternative that a variant does
  # not hold for one that is read.
  target_compile_options(quarnel_flags INTERFACE -fstack-protector-strong -Wno-null-dereference
                                                 -Wno-restrict -Wno-maybe-uninitialized)
endif()

# Makes the library quarnel_NAME of all sources in the current folder. DEPENDS names the libraries
# that it may include from; an arrow that is not listed here does not link.
function(quarnel_library name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;SOURCES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  if(NOT sources AND NOT ARG_SOURCES)
    add_library(quarnel_${name} INTERFACE)
    target_link_libraries(quarnel_${name} INTERFACE quarnel_flags ${ARG_DEPENDS})
    return()
  endif()
  add_library(quarnel_${name} STATIC ${sources} ${ARG_SOURCES})
  target_link_libraries(quarnel_${name} PUBLIC quarnel_flags ${ARG_DEPENDS})
endfunction()
