# Cross-build for 64-bit Windows: static, hardened programs. The oldest system
# with this architecture is the 64-bit edition of Windows XP (5.2), so headers
# declare no function that is newer.

set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(quarnelTriplet x86_64-w64-mingw32)
set(quarnelCompileFlags "-D_WIN32_WINNT=0x0502 -DWINVER=0x0502")
set(quarnelLinkFlags "-Wl,--high-entropy-va")
set(quarnelRunner wine-run)

include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
