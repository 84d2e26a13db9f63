#include "scan/unread.h"

#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"
#include "core/fields.h"
#include "core/paths.h"

namespace quarnel {
namespace {

// One record an item, and one with the count of all in the end.
constexpr std::string_view kFile = "NotRead.txt";
constexpr std::string_view kEnd = "end";

std::string PathOf(Machine& machine) {
  return GetPathWithSlash(machine.ProgramFolder()) + std::string(kFile);
}

std::optional<Unread> Read(std::string_view text) {
  Unread unread;
  for (;;) {
    const size_t end = text.find('\n');
    const auto fields = FieldsOf(text.substr(0, end));
    if (end == std::string_view::npos || !fields || fields->size() != 2) return std::nullopt;
    text.remove_prefix(end + 1);
    if (fields->front() != kEnd) {
      unread.Add(fields->front(), fields->back());
      continue;
    }
    const double count = Val(fields->back());
    if (count > static_cast<double>(unread.Count())) {
      unread.AddUnnamed(static_cast<size_t>(count) - unread.Count());
    }
    return unread;
  }
}

}  // namespace

WholeFile UnreadFile(Machine& machine, const Unread& unread) {
  std::string text;
  for (const UnreadItem& item : unread.Items()) text += RecordLine({item.kind, item.name});
  text += RecordLine({std::string(kEnd), std::to_string(unread.Count())});
  return {PathOf(machine), std::move(text)};
}

std::optional<Unread> LoadUnread(Files& files, Machine& machine) {
  std::optional<Unread> unread;
  IgnoringErrors([&] { unread = Read(ReadWholeFile(files, PathOf(machine))); });
  return unread;
}

}  // namespace quarnel
