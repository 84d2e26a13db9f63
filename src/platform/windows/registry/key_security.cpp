#include "platform/windows/registry/key_security.h"

#include <cstring>
#include <limits>
#include <vector>

#include "platform/windows/unique_handle.h"

namespace quarnel {
namespace {

// Blocks whose parts are numbers of 32 bits.
using Block = std::vector<DWORD>;

Block BlockOf(size_t bytes) { return Block((bytes + sizeof(DWORD) - 1) / sizeof(DWORD)); }

// The identifier of an account; empty when there is none of this name.
Block LookUpAccount(const std::wstring& account) {
  constexpr DWORD kLongestDomain = 255;
  wchar_t domain[kLongestDomain];
  DWORD domainSize = kLongestDomain;
  DWORD size = 0;
  SID_NAME_USE use = SidTypeUnknown;
  LookupAccountNameW(nullptr, account.c_str(), nullptr, &size, domain, &domainSize, &use);
  Block sid = BlockOf(size);
  domainSize = kLongestDomain;
  if (size == 0 ||
      !LookupAccountNameW(nullptr, account.c_str(), sid.data(), &size, domain, &domainSize, &use)) {
    return {};
  }
  return sid;
}

// The key's list of rights as a self-relative descriptor; empty on failure.
Block ReadSecurity(HKEY key) {
  DWORD size = 0;
  SECURITY_DESCRIPTOR none;
  const LSTATUS code = RegGetKeySecurity(key, DACL_SECURITY_INFORMATION, &none, &size);
  if (code != ERROR_INSUFFICIENT_BUFFER && code != ERROR_SUCCESS) return {};
  Block descriptor = BlockOf(size);
  if (RegGetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor.data(), &size) !=
      ERROR_SUCCESS) {
    return {};
  }
  return descriptor;
}

bool IsFirst(PACL list, DWORD access, PSID sid) {
  void* entry = nullptr;
  if (!GetAce(list, 0, &entry)) return false;
  const auto* allowed = static_cast<const ACCESS_ALLOWED_ACE*>(entry);
  return allowed->Header.AceType == ACCESS_ALLOWED_ACE_TYPE && allowed->Mask == access &&
         EqualSid(const_cast<DWORD*>(&allowed->SidStart), sid);
}

// A list with the new entry and all of the old one behind it; empty on failure.
Block ExtendedList(PACL old, DWORD access, PSID sid) {
  const size_t size = size_t{old->AclSize} + sizeof(ACCESS_ALLOWED_ACE) + GetLengthSid(sid);
  if (size > std::numeric_limits<WORD>::max()) return {};
  Block block = BlockOf(size);
  auto* list = reinterpret_cast<PACL>(block.data());
  const auto listSize = static_cast<DWORD>(block.size() * sizeof(DWORD));
  if (!InitializeAcl(list, listSize, old->AclRevision) ||
      !AddAccessAllowedAce(list, old->AclRevision, access, sid)) {
    return {};
  }
  for (DWORD i = 0; i < old->AceCount; ++i) {
    void* entry = nullptr;
    if (!GetAce(old, i, &entry)) return {};
    const DWORD entrySize = static_cast<const ACE_HEADER*>(entry)->AceSize;
    if (!AddAce(list, old->AclRevision, MAXDWORD, entry, entrySize)) return {};
  }
  return block;
}

}  // namespace

std::string AllowInFront(HKEY root, const std::wstring& path, const std::wstring& account,
                         uint32_t access) {
  Block sid = LookUpAccount(account);
  if (sid.empty()) return "LookupAccountName";

  // The list must be read before it is written.
  KeyHandle key;
  if (root == nullptr || RegOpenKeyExW(root, path.c_str(), 0, READ_CONTROL | WRITE_DAC,
                                       key.Receive()) != ERROR_SUCCESS) {
    return "RegOpenKeyEx";
  }
  Block descriptor = ReadSecurity(key.Get());
  BOOL present = FALSE;
  BOOL defaulted = FALSE;
  PACL list = nullptr;
  if (descriptor.empty() ||
      !GetSecurityDescriptorDacl(descriptor.data(), &present, &list, &defaulted)) {
    return "RegGetKeySecurity";
  }
  // Where everybody may do everything an entry would take rights, not give one.
  if (!present || list == nullptr || IsFirst(list, access, sid.data())) return {};

  SECURITY_DESCRIPTOR changed;
  Block extended = ExtendedList(list, access, sid.data());
  if (extended.empty() || !InitializeSecurityDescriptor(&changed, SECURITY_DESCRIPTOR_REVISION) ||
      !SetSecurityDescriptorDacl(&changed, TRUE, reinterpret_cast<PACL>(extended.data()), FALSE)) {
    return "InitializeSecurityDescriptor";
  }
  if (RegSetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, &changed) != ERROR_SUCCESS) {
    return "RegSetKeySecurity";
  }
  return {};
}

}  // namespace quarnel
