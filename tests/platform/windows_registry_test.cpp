// What only a real registry has: rights of keys as the system enforces them, and names that no text
// in a code page can hold.

#include "platform/windows/unique_handle.h"
#include "platform/windows/wide_text.h"
#include "support/platform_fixture.h"

// After the header that brings the system's in their order.
#include <aclapi.h>

namespace quarnel {
namespace {

using enum RegistryStatus;

class WindowsRegistryTest : public PlatformTest {
 protected:
  static KeyHandle OpenKey(std::string_view name, DWORD access) {
    KeyHandle key;
    RegCreateKeyExW(HKEY_CURRENT_USER, Wide(Key(name)).c_str(), 0, nullptr, 0, access, nullptr,
                    key.Receive(), nullptr);
    return key;
  }

  // Leaves of the rights of a key those to read it and to change its rights.
  void Lock(std::string_view name) {
    const KeyHandle key = OpenKey(name, WRITE_DAC | WRITE_OWNER);
    std::wstring account = Wide(registry().AccountName());
    EXPLICIT_ACCESSW readable = {};
    readable.grfAccessPermissions = KEY_READ | WRITE_DAC;
    readable.grfAccessMode = SET_ACCESS;
    readable.Trustee.TrusteeForm = TRUSTEE_IS_NAME;
    readable.Trustee.ptstrName = account.data();
    PACL list = nullptr;
    ASSERT_EQ(SetEntriesInAclW(1, &readable, nullptr, &list), DWORD{ERROR_SUCCESS});
    SECURITY_DESCRIPTOR descriptor;
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    // Its owner might be let through whatever the list says. Not every user may give a key away.
    SID service = {SID_REVISION, 1, SECURITY_NT_AUTHORITY, {SECURITY_LOCAL_SERVICE_RID}};
    SetSecurityDescriptorOwner(&descriptor, &service, FALSE);
    RegSetKeySecurity(key.Get(), OWNER_SECURITY_INFORMATION, &descriptor);
    SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE);
    EXPECT_EQ(RegSetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, &descriptor), ERROR_SUCCESS);
    LocalFree(list);
  }

  // The number of entries in a key's list of rights, and the rights of the first.
  static std::pair<DWORD, DWORD> Rights(std::string_view name) {
    const KeyHandle key = OpenKey(name, READ_CONTROL);
    DWORD size = 1024;
    std::vector<DWORD> descriptor(size);
    EXPECT_EQ(RegGetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, descriptor.data(), &size),
              ERROR_SUCCESS);
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    PACL list = nullptr;
    GetSecurityDescriptorDacl(descriptor.data(), &present, &list, &defaulted);
    void* first = nullptr;
    if (list == nullptr || !GetAce(list, 0, &first)) return {};
    return {list->AceCount, static_cast<const ACCESS_ALLOWED_ACE*>(first)->Mask};
  }
};

TEST_F(WindowsRegistryTest, AKeyThatForbidsItIsDeletedAfterAccessIsTaken) {
  CreateNewKey(registry(), kRoot, Key("locked"));
  Lock("locked");
  std::unique_ptr<RegistryKey> key;
  EXPECT_EQ(registry().Open(kRoot, Key("locked"), registry_access::kRead, key), kSuccess);
  EXPECT_EQ(registry().Open(kRoot, Key("locked"), registry_access::kReadWrite, key), kAccessDenied);
  EXPECT_EQ(registry().Delete(kRoot, Key("locked")), kAccessDenied);
  EXPECT_EQ(DeleteKey(registry(), kRoot, Key("locked")), kSuccess);
  EXPECT_EQ(registry().Open(kRoot, Key("locked"), registry_access::kRead, key), kFileNotFound);
}

TEST_F(WindowsRegistryTest, TakenAccessStandsInFrontOnce) {
  CreateNewKey(registry(), kRoot, Key("locked"));
  Lock("locked");
  for (int turn = 0; turn < 2; ++turn) TakeKeyAccess(registry(), kRoot, Key("locked"));
  EXPECT_EQ(Rights("locked"), std::pair(DWORD{2}, DWORD{registry_access::kDelete}));
}

TEST_F(WindowsRegistryTest, EveryNameIsListedAndReached) {
  for (const std::wstring& name : {std::wstring(L"\u0436\u20AC\u4E2D"), std::wstring(L"\xD800x"),
                                   std::wstring(L"\xDC80\xDFFF"), std::wstring(255, L'k')}) {
    const KeyHandle parent = OpenKey("names", KEY_ALL_ACCESS);
    KeyHandle made;
    ASSERT_EQ(RegCreateKeyExW(parent.Get(), name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                              made.Receive(), nullptr),
              ERROR_SUCCESS);
    const DWORD seven = 7;
    RegSetValueExW(made.Get(), name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&seven),
                   sizeof seven);
    const std::string narrow = Narrow(name);
    const std::string path = Key("names\\" + narrow);
    EXPECT_EQ(EnumSubKeys(registry(), kRoot, Key("names")), std::vector{narrow});
    EXPECT_EQ(QueryText(registry(), kRoot, path, narrow), "7") << narrow;
    std::unique_ptr<RegistryKey> key;
    ASSERT_EQ(registry().Open(kRoot, path, registry_access::kRead, key), kSuccess);
    std::string value;
    EXPECT_EQ(key->EnumValue(0, value), kSuccess);
    EXPECT_EQ(value, narrow);
    EXPECT_EQ(DeleteValue(registry(), kRoot, path, narrow), kSuccess);
    EXPECT_EQ(DeleteKey(registry(), kRoot, path), kSuccess);
  }
}

TEST_F(WindowsRegistryTest, ARootIsNotDeleted) {
  // The key that a path of no name would mean is the user's whole branch, so another root is asked.
  for (const std::string_view path : {"", "\\", "\\\\"}) {
    EXPECT_EQ(registry().Delete(hive::kCurrentConfig, path), kAccessDenied);
  }
}

}  // namespace
}  // namespace quarnel
