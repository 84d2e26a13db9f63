#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "controls/host.h"
#include "core/error_log.h"
#include "scan/results_page.h"
#include "scan/traces.h"

namespace quarnel {

inline constexpr std::string_view kFoundPrefix = "[Found] - ";
inline constexpr std::string_view kIgnoredPrefix = "[Ignored] - ";

// The text without any occurrence of the two prefixes.
std::string WithoutPrefixes(std::string_view text);

// Where a phase looks whether it has met a threat before.
enum class KnownBy { kThreatRow, kFileRows };

// One trace on its way into the lists and trees, with what its phase does in its own way.
struct Find {
  Threat threat;
  AnyTrace trace;    // which also tells the list
  std::string text;  // the trace's own text, in the tree and on the safe list
  // The text of the threat's row, and what threat and root are looked up by; empty: its name.
  std::string key = {};
  KnownBy knownBy = KnownBy::kThreatRow;
  bool ignoredIsListed = false;   // a trace on the safe list enters the flat list all the same
  bool ignoredMakesRoot = false;  // and gives a new threat its root
  // The rows come before the root, which is not looked for: one that stands already raises
  // kKeyNotUnique and the rows stay.
  bool rowsFirst = false;
  // The phase's root variable: that of the threat which it met last as new. The trace hangs there.
  TreeNodeRef* lastRoot = nullptr;
  bool keyHasPrefix = false;  // the node's key holds the prefix before the text
  // The flat tree takes no second line for a trace that it shows as ignored.
  bool oncePerTrace = false;
};

// How finds enter the lists and trees, and how ticks go from the tree to the lists.
class Results {
 public:
  // `levelOf` gives the threat level of a name.
  Results(ResultsPage& page, std::function<int(std::string_view name)> levelOf, Host& host,
          ErrorLog& log);

  // Whether the trace's text is on the safe list. Name and company are accepted and not used.
  bool IsSpywareIgnored(std::string_view trace, std::string_view name,
                        std::string_view company) const;

  struct Entered {
    TreeNodeRef root;    // where the trace hangs; null when it is in no tree
    bool isNew = false;  // it is the first of its threat
  };
  // The one way of a find into the lists and trees.
  Entered Enter(const Find& find);

  // The files of this name, in whatever letter case, that have been entered or are shown as
  // ignored.
  std::vector<std::string> FilesNamed(std::string_view path) const;

  // Enters the file of a running program; `key` is the text by which its threat is looked up. A
  // root that stands already under the threat's name ends the call half done: it is logged.
  void AddSpaywareToResults(std::string_view key, const FileTrace& trace,
                            std::string_view spywareId = {});

  // txtAdwareSpyware, lblRegistryInfected and lblFilesFolderInfected from the row counts.
  void RecomputeCounters();

  void vbatvwResults_nodeCheck(const TreeNodeRef& node);
  void vbatvwResults_nodeClick(const TreeNodeRef& node);
  void chkSelectAllDetectedSpywares_Click();
  // Toggles all ticks by way of the box.
  void cmdCheckUncheckAll_Click();

  // Copies a trace node's tick to the row of its trace.
  void SelectUnselectFiles(const TreeNode& node, ListView& list);
  void SelectUnselectRegsitry(const TreeNode& node);

  // The whole tree as one text: threats and ignored traces stand apart from the found traces above
  // them.
  std::string ResultsText() const;

 private:
  bool IsKnown(const Find& find, std::string_view key) const;
  void AddRow(const Find& find);
  TreeNodeRef BeginThreat(const Find& find, std::string_view key);
  TreeNodeRef RootOf(std::string_view name) const;
  TreeNodeRef AddThreatRoot(const Threat& threat);
  void ShowTrace(const TreeNodeRef& root, const Find& find, bool ignored);
  void AddTraceChild(const TreeNodeRef& root, std::string_view prefix, const Find& find);
  std::string LevelColumn(std::string_view name) const;

  ResultsPage& page_;
  std::function<int(std::string_view)> levelOf_;
  Host& host_;
  ErrorLog& log_;
};

}  // namespace quarnel
