#include "platform/windows/winapi.h"

namespace quarnel {
namespace {

NewerFunctions LookUpAll() {
  const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
  NewerFunctions newer;
  newer.queryFullProcessImageName =
      LookUp<decltype(newer.queryFullProcessImageName)>(kernel, "QueryFullProcessImageNameW");
  const DWORD version = GetVersion();
  newer.fastSearches = (version & 0xFF) * 0x100 + (version >> 8 & 0xFF) >= 0x601;
  return newer;
}

}  // namespace

const NewerFunctions& Newer() {
  static const NewerFunctions functions = LookUpAll();
  return functions;
}

}  // namespace quarnel
