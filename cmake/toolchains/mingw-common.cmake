# What both Windows toolchain files share. The including file sets
#   quarnelTriplet        x86_64-w64-mingw32 or i686-w64-mingw32
#   quarnelCompileFlags   flags of that architecture for every compilation
#   quarnelLinkFlags      flags of that architecture for every link
#   quarnelRunner         the script in tools/ that runs a program of it

set(CMAKE_SYSTEM_NAME Windows)

# The posix variants by their full names: which one the plain names mean is a
# setting of the machine, and the win32 variant has no std::thread.
set(CMAKE_C_COMPILER ${quarnelTriplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${quarnelTriplet}-g++-posix)
set(CMAKE_RC_COMPILER ${quarnelTriplet}-windres)

# This compiler cannot align a stack frame to more than 16 bytes here, so AVX registers must be
# spilled with unaligned moves, which cost the same. The distribution's compiler is patched to do
# so; the assembler sees to it for any other.
set(quarnelCompileFlags
    "${quarnelCompileFlags} -fstack-protector-strong -Wa,-muse-unaligned-vector-move")

# One file that runs on a bare system: no runtime DLL beside it.
set(quarnelLinkFlags
    "-static -static-libgcc -static-libstdc++ -fstack-protector-strong \
-Wl,--dynamicbase -Wl,--nxcompat ${quarnelLinkFlags}")

foreach(language C CXX)
  set(CMAKE_${language}_FLAGS_INIT "${quarnelCompileFlags}")
endforeach()
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "${quarnelLinkFlags}")
  set(CMAKE_${kind}_LINKER_FLAGS_RELEASE_INIT "-s")
endforeach()

# The libraries that tools/third-party builds. The environment decides once, at
# the first configuration; later ones keep the folder.
if(DEFINED ENV{QUARNEL_CACHE})
  set(quarnelCache $ENV{QUARNEL_CACHE})
elseif(DEFINED ENV{XDG_CACHE_HOME})
  set(quarnelCache $ENV{XDG_CACHE_HOME}/quarnel)
else()
  set(quarnelCache $ENV{HOME}/.cache/quarnel)
endif()
set(QUARNEL_THIRD_PARTY ${quarnelCache}/third-party/${quarnelTriplet}
    CACHE PATH "Folder of the libraries built by tools/third-party")

set(CMAKE_FIND_ROOT_PATH
    ${QUARNEL_THIRD_PARTY}/libzip
    ${QUARNEL_THIRD_PARTY}/libpng
    ${QUARNEL_THIRD_PARTY}/wx
    ${QUARNEL_THIRD_PARTY}  # for absolute paths into its store
    /usr/${quarnelTriplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The packaged zlib comes static and as a DLL.
set(ZLIB_USE_STATIC_LIBS ON)
# Found on the path, it would be the one of the build machine's own toolkit.
set(wxWidgets_CONFIG_EXECUTABLE ${QUARNEL_THIRD_PARTY}/wx/bin/wx-config)
# pkg-config must not answer with libraries of the build machine.
set(ENV{PKG_CONFIG_PATH} "")
set(ENV{PKG_CONFIG_LIBDIR}
    "${QUARNEL_THIRD_PARTY}/libzip/lib/pkgconfig:${QUARNEL_THIRD_PARTY}/libpng/lib/pkgconfig")

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../tools/${quarnelRunner})
