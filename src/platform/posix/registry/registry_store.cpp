#include "platform/posix/registry/registry_store.h"

#include "base/text.h"

namespace quarnel {

uint32_t KeyRights::GrantedTo(std::string_view account) const {
  constexpr uint32_t kAllAccess = 0xF003F;
  constexpr uint32_t kReadControl = 0x20000;
  constexpr std::string_view kEveryone = "Everyone";
  if (!list) return ~uint32_t{0};
  uint32_t granted = 0;
  if (owner && EqualText(*owner, account)) granted = kReadControl | registry_access::kWriteDac;
  for (const Entry& entry : *list) {
    if (!EqualText(entry.account, account) && !EqualText(entry.account, kEveryone)) continue;
    granted |= entry.access;
  }
  if ((granted & registry_access::kGenericAll) != 0) granted |= kAllAccess;
  return granted;
}

}  // namespace quarnel
