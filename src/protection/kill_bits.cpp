#include "protection/kill_bits.h"

#include <functional>
#include <optional>
#include <string>

#include "core/existing_files.h"
#include "core/lines.h"
#include "core/paths.h"
#include "signatures/complement.h"
#include "signatures/signature_files.h"

namespace quarnel {
namespace {

constexpr std::string_view kCompatibility =
    "Software\\Microsoft\\Internet Explorer\\ActiveX Compatibility\\";
constexpr std::string_view kFlags = "Compatibility Flags";
constexpr uint32_t kKillBit = 1024;

// How a run tells of a control, and what it does about its key.
struct ShieldWork {
  std::string_view before;
  std::string_view behind;
  std::function<void(const std::string& key)> act;
};

// The deciphered copy of the signature file, for as long as it is read. A copy that a killed
// program left would keep its end behind a shorter text.
class DecipheredCopy {
 public:
  DecipheredCopy(const Services& services, const std::string& source)
      : files_(services.platform.files()), path_(source + ".tmp") {
    Remove();
    ComplementFile({.files = files_,
                    .host = services.host,
                    .log = services.log,
                    .title = services.settings.ApplicationName()},
                   source, path_);
  }
  ~DecipheredCopy() { Remove(); }
  DecipheredCopy(const DecipheredCopy&) = delete;
  DecipheredCopy& operator=(const DecipheredCopy&) = delete;

  // Nothing when there is no such copy.
  std::optional<std::string> Text() const {
    if (!FileExists(files_, path_)) return std::nullopt;
    return ReadWholeFile(files_, path_);
  }

 private:
  void Remove() {
    IgnoringErrors([&] {
      if (FileExists(files_, path_)) files_.Delete(path_);
    });
  }

  Files& files_;
  std::string path_;
};

void ForEachControl(const Services& services, ShieldRun& run, const ShieldWork& work) {
  const DecipheredCopy copy(services,
                            SignaturePath(services.platform.machine(), signature_file::kActiveX));
  const std::optional<std::string> text = copy.Text();
  if (!text) return;
  FieldReader items(*text);
  for (size_t counter = 0; !items.AtEnd() && !run.cancelled; ++counter) {
    const std::optional<std::string> item = items.Next();
    if (!item) break;
    if (counter % 2 == 0) {
      run.status.SetCaption(std::string(work.before) + *item + std::string(work.behind));
    } else if (!item->empty()) {
      work.act(std::string(kCompatibility) + *item);
    }
    services.host.DoEvents();
  }
}

}  // namespace

void ImmunizeSpywares(const Services& services, ShieldRun& run) {
  Reporting(services.log, "ImmunizeSpywares", [&] {
    ForEachControl(services, run,
                   {.before = "Shielding ", .behind = "...", .act = [&](const std::string& key) {
                      Reporting(services.log, "SetKeyValue_LocalMachine", [&] {
                        SetKeyValue_LocalMachine(services.platform.registry(), key, kFlags,
                                                 kKillBit);
                      });
                    }});
  });
}

void DeImmunizeSpywares(const Services& services, ShieldRun& run) {
  Reporting(services.log, "DeImmunizeSpywares", [&] {
    ForEachControl(
        services, run,
        {.before = "removing shielding from ", .behind = "...", .act = [&](const std::string& key) {
           DeleteValue(services.platform.registry(), hive::kLocalMachine, key, kFlags);
         }});
  });
}

void LoadSpywaresInListview(const Services& services, ListView& list, std::string_view path) {
  Reporting(services.log, "LoadSpywaresInListview", [&] {
    const std::string text = ReadWholeFile(services.platform.files(), path);
    FieldReader items(text);
    while (const auto name = items.Next()) {
      const size_t row = list.Add({.text = *name});
      const std::string identifier = items.Next().value_or(std::string());
      list.SetSubItem(row, 1, identifier);
      list.SetTag(row, identifier);
    }
  });
}

}  // namespace quarnel
