# Cross-build for 32-bit machines from Windows XP on: static, hardened programs.
#
# SSE2 is asked for: without it floating-point values live in 80-bit registers
# and are rounded twice, so number texts would differ from the 64-bit build.
# Every processor sold for Windows XP in its last ten years has it; nothing
# newer is used unless a run-time check finds it.
#
# The system enters callbacks, threads and DLLs with a stack aligned to 4 bytes,
# SSE spills need 16: each function that needs it aligns the stack itself.

set(CMAKE_SYSTEM_PROCESSOR i686)
set(quarnelTriplet i686-w64-mingw32)
set(quarnelCompileFlags "-D_WIN32_WINNT=0x0501 -DWINVER=0x0501 \
-march=pentium4 -mtune=generic -mfpmath=sse -mstackrealign")
set(quarnelLinkFlags "")
set(quarnelRunner wine-i386)

include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
