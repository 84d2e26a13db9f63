#include "protection/startup_verdicts.h"

#include "base/text.h"
#include "core/paths.h"

namespace quarnel {

std::string PathOfVerdict(std::string_view text) {
  return Replace(Replace(text, verdict::kBlocked, ""), verdict::kAllowed, "");
}

StartupVerdicts::StartupVerdicts(Files& files, Machine& machine, std::string_view applicationName)
    : files_(files),
      machine_(machine),
      path_(GetPathWithSlash(machine.ProgramFolder())
                .append(applicationName)
                .append("_Startup.txt")) {}

cInifile StartupVerdicts::File() const {
  cInifile file(files_, machine_);
  file.SetPath(path_);
  file.SetDefault("NOOOOO");
  return file;
}

void StartupVerdicts::Open() {
  held_.emplace(File());
  held_->Hold();
}

cInifile& StartupVerdicts::Held() {
  if (!held_) Open();
  return *held_;
}

std::string StartupVerdicts::Of(std::string_view section, std::string_view name) {
  cInifile& file = Held();
  file.SetSection(section);
  file.SetKey(name);
  return file.Value();
}

void StartupVerdicts::Set(std::string_view section, std::string_view name, std::string_view text) {
  if (Of(section, name) == text) return;
  cInifile file = File();
  file.SetSection(section);
  file.SetKey(name);
  file.SetValue(text);
  held_.reset();
}

std::vector<StartupEntry> StartupVerdicts::All() {
  std::vector<StartupEntry> all;
  std::vector<std::string> sections;
  std::vector<std::string> names;
  long count = 0;
  cInifile& file = Held();
  file.EnumerateAllSections(sections, count);
  for (const std::string& section : sections) {
    file.SetSection(section);
    file.EnumerateCurrentSection(names, count);
    for (const std::string& name : names) {
      file.SetKey(name);
      all.push_back({.name = name, .path = file.Value(), .section = section});
    }
  }
  return all;
}

}  // namespace quarnel
