#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/runtime_error.h"
#include "platform/platform.h"

namespace quarnel {

// A registry of which every operation raises while it is broken.
class BreakableRegistry : public Registry {
 public:
  explicit BreakableRegistry(Registry& registry) : registry_(registry) {}
  bool broken = false;      // all operations
  bool unreadable = false;  // the opening of keys

  RegistryStatus Open(uint32_t root, std::string_view path, uint32_t access,
                      std::unique_ptr<RegistryKey>& key) override {
    return Whole(unreadable).Open(root, path, access, key);
  }
  RegistryStatus Create(uint32_t root, std::string_view path,
                        std::unique_ptr<RegistryKey>& key) override {
    return Whole().Create(root, path, key);
  }
  RegistryStatus Delete(uint32_t root, std::string_view path) override {
    return Whole().Delete(root, path);
  }
  std::string SetKeySecurity(uint32_t root, std::string_view path, std::string_view account,
                             uint32_t access) override {
    return Whole().SetKeySecurity(root, path, account, access);
  }
  std::string AccountName() override { return Whole().AccountName(); }

 private:
  Registry& Whole(bool alsoBroken = false) {
    if (broken || alsoBroken) throw RuntimeError(ErrorNumber::kDeviceError);
    return registry_;
  }
  Registry& registry_;
};

// A machine whose registry can break, and whose files nobody gets while they are broken. Who has
// got them already, as the error log, keeps them.
class BreakablePlatform : public Platform {
 public:
  explicit BreakablePlatform(Platform& platform) : all_(platform), registry_(platform.registry()) {}
  bool filesAreBroken = false;

  Files& files() override {
    if (filesAreBroken) throw RuntimeError(ErrorNumber::kDeviceError);
    return all_.files();
  }
  BreakableRegistry& registry() override { return registry_; }
  Processes& processes() override { return all_.processes(); }
  VersionRecords& versions() override { return all_.versions(); }
  Machine& machine() override { return all_.machine(); }
  Shell& shell() override { return all_.shell(); }
  Desktop& desktop() override { return all_.desktop(); }
  Power& power() override { return all_.power(); }

 private:
  Platform& all_;
  BreakableRegistry registry_;
};

}  // namespace quarnel
