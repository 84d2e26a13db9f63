#include "scan/found_traces.h"

#include <string_view>
#include <unordered_map>
#include <utility>

#include "platform/names.h"
#include "scan/traces.h"

namespace quarnel {
namespace {

// The node's trace: only the prefix that the tree gave it goes, its own text may hold one, too.
std::string_view TraceOfNode(const TreeNode& node) {
  std::string_view text = node.text;
  for (const std::string_view prefix : {kFoundPrefix, kIgnoredPrefix}) {
    if (text.starts_with(prefix)) return text.substr(prefix.size());
  }
  return text;
}

class Collector {
 public:
  Collector(const ListView& safeList, Files& files) : safeList_(safeList), files_(files) {}

  void TakeRow(FoundTrace trace) {
    trace.listed = true;
    if (FoundTrace* known = Find(trace.kind, trace.text)) {
      known->ticked |= trace.ticked;
      return;
    }
    Add(std::move(trace));
  }

  // A trace that has left the safe list since the scan, or that was on it, has a node alone.
  void TakeNode(const TreeNode& node) {
    const std::string_view text = TraceOfNode(node);
    for (const TraceKind kind : {TraceKind::kFile, TraceKind::kRegistry, TraceKind::kCookie}) {
      if (FoundTrace* known = Find(kind, text)) {
        known->nodeTicked |= node.checked;
        return;
      }
    }
    Add({.text = std::string(text),
         .threat = node.parent->text,
         .typeName = node.parent->columns.empty() ? std::string() : node.parent->columns.front(),
         .nodeTicked = node.checked});
  }

  std::vector<FoundTrace> Take() { return std::move(traces_); }

 private:
  FoundTrace* Find(TraceKind kind, std::string_view text) {
    const auto [begin, end] = places_.equal_range(FoldName(text));
    for (auto place = begin; place != end; ++place) {
      FoundTrace& known = traces_[place->second];
      if (known.kind != kind) continue;
      if (known.text == text || kind == TraceKind::kRegistry ||
          LeadToOneFile(files_, known.text, text)) {
        return &known;
      }
    }
    return nullptr;
  }

  void Add(FoundTrace trace) {
    trace.exempt = !safeList_.Empty() && FindName(safeList_, trace.text);
    places_.emplace(FoldName(trace.text), traces_.size());
    traces_.push_back(std::move(trace));
  }

  const ListView& safeList_;
  Files& files_;
  std::vector<FoundTrace> traces_;
  std::unordered_multimap<std::string, size_t> places_;  // by the text, letter case folded
};

}  // namespace

bool LeadToOneFile(Files& files, std::string_view left, std::string_view right) {
  for (size_t end = left.find('\\'); end != std::string_view::npos;) {
    end = left.find('\\', end + 1);
    if (left.substr(0, end) == right.substr(0, end)) continue;
    const auto one = files.Stat(left.substr(0, end));
    const auto other = files.Stat(right.substr(0, end));
    // Of what is gone nothing tells two files apart.
    if (!one || !other) return !one && !other;
    if (one->name != other->name) return false;
  }
  return true;
}

std::vector<FoundTrace> FoundTraces(const ResultsPage& page, Files& files) {
  Collector collector(page.lvwIgnoredSpywares, files);
  for (const ListRow& row : page.lvwFilesToBeDeleted.Rows()) {
    FileTrace file = FileTrace::Of(row);
    collector.TakeRow({.text = std::move(file.path),
                       .threat = std::move(file.threatName),
                       .typeName = std::move(file.typeName),
                       .ticked = row.checked});
  }
  for (const ListRow& row : page.lvwRegistryEntriesFound.Rows()) {
    RegistryTrace entry = RegistryTrace::Of(row);
    collector.TakeRow({.kind = TraceKind::kRegistry,
                       .text = std::string(RegistryTrace::CompleteKey(row)),
                       .threat = std::move(entry.threatName),
                       .typeName = std::move(entry.typeName),
                       .ticked = row.checked,
                       .hive = entry.hive,
                       .key = std::move(entry.key),
                       .valueName = std::move(entry.valueName)});
  }
  for (const ListRow& row : page.lvwTrackingCookieObjectrecognized.Rows()) {
    collector.TakeRow({.kind = TraceKind::kCookie,
                       .text = CookieTrace::Of(row).Text(),
                       .threat = std::string(kTrackingObject),
                       .typeName = std::string(kTrackingCookies),
                       .ticked = row.checked});
  }
  for (const TreeNodeRef& node : page.vbatvwResults.InOrder()) {
    if (node->parent) collector.TakeNode(*node);
  }
  return collector.Take();
}

}  // namespace quarnel
