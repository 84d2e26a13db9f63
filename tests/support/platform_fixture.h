#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/runtime_error.h"
#include "platform/platform.h"
#include "support/temporary_machine.h"

namespace quarnel {

// A test with a platform, a folder of its own on C: and a registry key of its own. Both are removed
// at the end, so that the same tests run on a machine folder and on a running Windows.
class PlatformTest : public ::testing::Test {
 protected:
  static constexpr uint32_t kRoot = hive::kCurrentUser;
  static constexpr std::string_view kTestKey = "Software\\QuarnelTest";

  using Strings = std::vector<std::string>;

  PlatformTest();
  ~PlatformTest() override;

  Files& files() { return platform_->files(); }
  Registry& registry() { return platform_->registry(); }
  Machine& machine() { return platform_->machine(); }
  Platform& platform() { return *platform_; }
  const std::string& machineFolder() const { return machine_.Folder(); }

  // The test's folder, and a path in it.
  const std::string& Scratch() const { return scratch_; }
  std::string Path(std::string_view name) const;
  // Makes a file, with the folders on the way to it; its path.
  std::string Write(std::string path, std::string_view bytes = "x");
  // The same in the test's folder.
  std::string Make(std::string_view name, std::string_view bytes = "x") {
    return Write(Path(name), bytes);
  }
  std::string Read(std::string_view path) { return ReadWholeFile(files(), path); }
  bool Exists(std::string_view path) { return files().Stat(path).has_value(); }
  // What a folder holds, in order.
  std::vector<std::string> Names(std::string_view folder);
  // The path of a key below the test's own.
  static std::string Key(std::string_view name);

 private:
  TemporaryMachine machine_;
  std::unique_ptr<Platform> platform_;
  std::string scratch_;
};

// Deletes a folder and all in it, read-only files too.
void DeleteTree(Files& files, const std::string& folder);

// The number of the error that an action raises; nothing when it raises none.
template <typename Action>
std::optional<ErrorNumber> ErrorOf(Action&& action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    return error.Number();
  }
  return std::nullopt;
}

}  // namespace quarnel
