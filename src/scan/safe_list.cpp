#include "scan/safe_list.h"

#include "base/text.h"
#include "core/existing_files.h"
#include "core/lines.h"
#include "core/own_files.h"
#include "core/paths.h"

namespace quarnel {
namespace {

std::string LineOf(std::string_view trace, std::string_view field1, std::string_view field2) {
  return Join({std::string(trace), std::string(field1), std::string(field2)}, "^") + "\r\n";
}

}  // namespace

std::string SafeListPath(Machine& machine) {
  return GetPathWithSlash(machine.ProgramFolder()) + std::string(kSafeListFile);
}

std::string SafeList::TextAt(std::string_view path) {
  const std::string place = OwnFileToRead(files_, machine_, path);
  return files_.Look(place) ? ReadWholeFile(files_, place) : std::string();
}

void SafeList::Load(std::string_view path, ListView& list) {
  const std::string place = OwnFileToRead(files_, machine_, path);
  // One that cannot be looked at is not taken for a missing one.
  files_.Look(place);
  if (!FileExists(files_, place)) return;
  const std::string text = ReadWholeFile(files_, place);
  LineReader lines(text);
  while (const auto line = lines.Next()) {
    const std::vector<std::string> fields = Split(*line, "^");
    if (fields.size() < 3) throw RuntimeError(ErrorNumber::kSubscriptOutOfRange);
    list.Add({.text = fields[0], .subItems = {fields[1], fields[2]}});
  }
}

bool SafeList::AddIgnoredSpywaresTolvw(std::string_view path, std::string_view field1,
                                       std::string_view text, std::string_view field2, bool addNew,
                                       ListView& list) {
  return Reporting(log_, "AddIgnoredSpywaresTolvw", [&] {
    if (!addNew) return Load(path, list);
    const std::string trace = WithoutPrefixes(text);
    if (FindName(list, trace)) return;
    list.Add({.text = trace, .subItems = {std::string(field1), std::string(field2)}});
    ReplaceOwnFile(files_, machine_, path, TextAt(path) + LineOf(trace, field1, field2));
  });
}

void SafeList::Rewrite(std::string_view path, const ListView& list) {
  // The rows of a file that cannot be read are not these.
  TextAt(path);
  std::string text;
  for (const ListRow& row : list.Rows()) text += LineOf(row.text, row.SubItem(1), row.SubItem(2));
  if (!text.empty()) return ReplaceOwnFile(files_, machine_, path, text);
  IgnoringErrors([&] { DeleteOwnFile(files_, machine_, path); });
}

bool SafeList::AddTickedTraces(std::string_view path, ResultsPage& page) {
  bool moved = false;
  for (const TreeNodeRef& node : page.vbatvwResults.InOrder()) {
    if (!node->checked || !node->children.empty() || !node->parent) continue;
    page.vbatvwResults.SetText(*node, Replace(node->text, kFoundPrefix, kIgnoredPrefix));
    moved = true;
    const std::string threat = node->parent->text;
    AddIgnoredSpywaresTolvw(path, threat, node->text, threat, true, page.lvwIgnoredSpywares);
  }
  page.vbatvwResults.Refresh();
  return moved;
}

}  // namespace quarnel
