// A component that leaves a trace in the registry when it is registered, for the tests of the
// shell. A second removal of the trace fails.

#include <windows.h>

namespace {

constexpr const wchar_t* kKey = L"Software\\QuarnelTest\\Component";
constexpr const wchar_t* kValue = L"registered";

HMODULE ownModule = nullptr;

HRESULT ResultOf(LSTATUS code) { return HRESULT_FROM_WIN32(static_cast<DWORD>(code)); }

}  // namespace

BOOL WINAPI DllMain(HINSTANCE module, DWORD /*reason*/, void* /*reserved*/) {
  ownModule = module;
  return TRUE;
}

extern "C" __declspec(dllexport) HRESULT STDAPICALLTYPE DllRegisterServer() {
  wchar_t path[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameW(ownModule, path, MAX_PATH);
  HKEY key = nullptr;
  LSTATUS code = RegCreateKeyExW(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                                 &key, nullptr);
  if (code != ERROR_SUCCESS) return ResultOf(code);
  code = RegSetValueExW(key, kValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(path),
                        (length + 1) * DWORD{sizeof(wchar_t)});
  RegCloseKey(key);
  return ResultOf(code);
}

extern "C" __declspec(dllexport) HRESULT STDAPICALLTYPE DllUnregisterServer() {
  HKEY key = nullptr;
  LSTATUS code = RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_SET_VALUE, &key);
  if (code != ERROR_SUCCESS) return ResultOf(code);
  code = RegDeleteValueW(key, kValue);
  RegCloseKey(key);
  return ResultOf(code);
}
