#include "scan/safe_list.h"

#include "base/text.h"
#include "core/lines.h"
#include "core/paths.h"

namespace quarnel {

std::string SafeListPath(Machine& machine) {
  return GetPathWithSlash(machine.ProgramFolder()) + std::string(kSafeListFile);
}

void SafeList::Load(std::string_view path, ListView& list) {
  if (!FileExists(files_, path)) return;
  const std::string text = ReadWholeFile(files_, path);
  LineReader lines(text);
  while (const auto line = lines.Next()) {
    const std::vector<std::string> fields = Split(*line, "^");
    if (fields.size() < 3) throw RuntimeError(ErrorNumber::kSubscriptOutOfRange);
    list.Add({.text = fields[0], .subItems = {fields[1], fields[2]}});
  }
}

void SafeList::AddIgnoredSpywaresTolvw(std::string_view path, std::string_view field1,
                                       std::string_view text, std::string_view field2, bool addNew,
                                       ListView& list) {
  Reporting(log_, "AddIgnoredSpywaresTolvw", [&] {
    if (!addNew) return Load(path, list);
    const std::string trace = WithoutPrefixes(text);
    if (list.FindText(trace)) return;
    list.Add({.text = trace, .subItems = {std::string(field1), std::string(field2)}});
    AppendToFile(files_, path,
                 Join({trace, std::string(field1), std::string(field2)}, "^") + "\r\n");
  });
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
