#include "scan/unread.h"

#include <algorithm>
#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"
#include "core/fields.h"
#include "core/own_files.h"
#include "core/paths.h"
#include "platform/names.h"

namespace quarnel {
namespace {

// One record an item, and one with the count of all in the end.
constexpr std::string_view kFile = "NotRead.txt";
constexpr std::string_view kEnd = "end";
constexpr std::string_view kNotRun = "not run";
constexpr std::string_view kNotSaved = "not saved";
constexpr std::string_view kOutcome = "outcome";
constexpr std::string_view kStopped = "stopped";

std::string PathOf(Machine& machine) {
  return GetPathWithSlash(machine.ProgramFolder()) + std::string(kFile);
}

}  // namespace

void Unread::Add(std::string_view kind, std::string_view name) {
  registryBroken_ |= kind == kUnreadRegistryKey;
  if (items_.size() < kMostNamed) {
    if (!named_.insert(FoldName(name)).second) return;
    items_.push_back({std::string(kind), std::string(name)});
  } else if (named_.contains(FoldName(name))) {
    return;
  }
  ++count_;
}

void Unread::AddNotRun(std::string_view phase, std::string_view reason) {
  notRun_.push_back(std::string(phase) + ": " + std::string(reason));
}

void Unread::AddNotSaved(std::string_view what, std::string_view reason) {
  notSaved_.push_back(std::string(what) + ": " + std::string(reason));
}

std::string Unread::Text(size_t most) const {
  std::string text;
  for (const std::string& phase : notRun_) text += "Not run: " + phase + "\r\n";
  for (const std::string& record : notSaved_) text += "Not saved: " + record + "\r\n";
  const size_t named = std::min(items_.size(), most);
  for (size_t i = 0; i < named; ++i) {
    text += "Not read: " + items_[i].kind + " " + items_[i].name + "\r\n";
  }
  if (count_ > named) text += "Not read: " + std::to_string(count_ - named) + " further\r\n";
  return text;
}

std::optional<Unread> ReadUnread(std::string_view text) {
  Unread unread;
  for (;;) {
    const size_t end = text.find('\n');
    const auto fields = FieldsOf(text.substr(0, end));
    if (end == std::string_view::npos || !fields || fields->size() != 2) return std::nullopt;
    text.remove_prefix(end + 1);
    const std::string& kind = fields->front();
    const std::string& name = fields->back();
    if (kind == kNotRun) {
      unread.notRun_.push_back(name);
    } else if (kind == kNotSaved) {
      unread.notSaved_.push_back(name);
    } else if (kind == kOutcome) {
      unread.SetOutcome(name);
    } else if (kind == kStopped) {
      unread.SetStopped();
    } else if (kind != kEnd) {
      unread.Add(kind, name);
    } else {
      const double count = Val(name);
      if (count > static_cast<double>(unread.Count())) {
        unread.AddUnnamed(static_cast<size_t>(count) - unread.Count());
      }
      return unread;
    }
  }
}

WholeFile UnreadFile(Machine& machine, const Unread& unread) {
  std::string text;
  const auto add = [&text](std::string_view kind, const std::string& name) {
    text += RecordLine({std::string(kind), name});
  };
  if (!unread.Outcome().empty()) add(kOutcome, unread.Outcome());
  if (unread.stopped_) add(kStopped, "");
  for (const std::string& phase : unread.NotRun()) add(kNotRun, phase);
  for (const std::string& record : unread.NotSaved()) add(kNotSaved, record);
  for (const UnreadItem& item : unread.Items()) add(item.kind, item.name);
  text += RecordLine({std::string(kEnd), std::to_string(unread.Count())});
  return {PathOf(machine), std::move(text)};
}

Unread LoadUnread(Files& files, Machine& machine) {
  std::optional<Unread> unread;
  IgnoringErrors([&] {
    const std::string path = OwnFileToRead(files, machine, PathOf(machine));
    unread = files.Look(path) ? ReadUnread(ReadWholeFile(files, path)) : Unread();
  });
  if (unread) return *std::move(unread);
  Unread unknown;
  unknown.AddNotRun("Last scan", "its record cannot be read");
  return unknown;
}

}  // namespace quarnel
