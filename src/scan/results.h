#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "controls/host.h"
#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "controls/tree_view.h"
#include "core/error_log.h"

namespace quarnel {

// What a scan has found. The lists and trees are the only store of it: the removal reads them back,
// the counters are their row counts, and the dumps at the end of a scan are their rows.
struct ResultsPage {
  Form& form;

  // One threat a row: its name, its type, its company; the tag holds its SpywareID.
  ListView lvwPicRemoveListOfSpywareFoundAndToBeRemoved{
      form,
      "lvwPicRemoveListOfSpywareFoundAndToBeRemoved",
      {"Name of Spyware.", "Type of Spyware", "Company Name"}};
  // One file trace a row: its full path, the threat's type and name.
  ListView lvwFilesToBeDeleted{
      form, "lvwFilesToBeDeleted", {"File Path", "Type of Spyware", "Spyware Name"}};
  ListView lvwRegistryEntriesFound{form,
                                   "lvwRegistryEntriesFound",
                                   {"Company Name", "Spyware Name", "Type of Spyware", "Main Key",
                                    "Key", "Value Name", "CompleteKey"}};
  ListView lvwTrackingCookieObjectrecognized{
      form, "lvwTrackingCookieObjectrecognized", {"File Path", "File"}};
  // Handed to the deep scan, which leaves it empty.
  ListView lvwFileNotFounds{form,
                            "lvwFileNotFounds",
                            {"FileName", "CompanyName", "SpywareName", "HashCode", "SpywareID"}};
  // The safe list: the trace's own text, and twice the threat's.
  ListView lvwIgnoredSpywares{
      form, "lvwIgnoredSpywares", {"Name of Spyware", "Company Name", "Company Name"}};

  // Threats with their traces below; the second tree holds the same lines as a flat sequence.
  TreeView vbatvwResults{form, "vbatvwResults"};
  ItemTree sfttvwResults{form, "sfttvwResults"};

  Label txtAdwareSpyware{form, "txtAdwareSpyware", "0"};
  Label lblRegistryInfected{form, "lblRegistryInfected", "0"};
  Label lblFilesFolderInfected{form, "lblFilesFolderInfected", "0"};
  Label lbltracesFound{form, "lbltracesFound", "0"};

  TextBox txtSpywareDescription{form, "txtSpywareDescription"};
  CheckBox chkSelectAllDetectedSpywares{form, "chkSelectAllDetectedSpywares", "Select All"};
  CheckBox chkDoNotShowIgnoredItem{form, "chkDoNotShowIgnoredItem",
                                   "Do not show ignored items in the results"};
  CheckBox chkCreateRestore{form, "chkCreateRestore", "Create a restore point before removal"};

  Button cmdCheckUncheckAll{form, "cmdCheckUncheckAll", "Chec&k/Uncheck All"};
  Button cmdViewSpywareDetail{form, "cmdViewSpywareDetail", "View Detail"};
  Button cmdViewResults{form, "cmdViewResults", "View Results"};
  Button cmdIgnoredSpyware{form, "cmdIgnoredSpyware", "&Safe List"};
  Button cmdIgnoredProcesses{form, "cmdIgnoredProcesses", "Ignored Processes"};
  Image ImgAddToIgnoredListNormal{form, "ImgAddToIgnoredListNormal"};
  Button Command1{form, "Command1", "Cop&y Results"};

  Button cmdRemoveSpywares{form, "cmdRemoveSpywares", "&Remove"};
  Button cmdDone{form, "cmdDone", "Done"};
  Button cmdcancel{form, "cmdcancel", "Cancel"};
  // Index 0 goes on from the results to the removal, index 1 back to the summary.
  Image imgNext0{form, "imgNext(0)"};
  Image imgNext1{form, "imgNext(1)"};

  Panel picSearchResultsLeftWindow{form, "picSearchResultsLeftWindow"};
  Panel picResultsRightWindow{form, "picResultsRightWindow"};
};

// The mark that imgNext(0) carries while results wait to be dealt with.
inline constexpr std::string_view kResultMode = "ResultMode";

inline constexpr std::string_view kFoundPrefix = "[Found] - ";
inline constexpr std::string_view kIgnoredPrefix = "[Ignored] - ";

// The text without any occurrence of the two prefixes.
std::string WithoutPrefixes(std::string_view text);

// A find of the memory inspection, set by its caller just before AddSpaywareToResults.
struct CurrentThreat {
  std::string type;
  std::string name;
  std::string tag;   // the SpywareID, or empty
  std::string path;  // the trace
};

// One file that a file signature describes.
struct FileTrace {
  std::string path;
  std::string company;
  std::string threatName;
  std::string typeName;
  std::string spywareId;
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

  // Adds the file-like trace `current`; `key` is the text by which its threat is looked up. A root
  // that stands already under the threat's name ends the call half done: it is logged.
  void AddSpaywareToResults(std::string_view key);
  CurrentThreat current;

  // Adds a trace of the file phase. `root` is the phase's root variable: it is replaced when the
  // trace is the first of its threat, and otherwise used as it stands.
  void AddFileTrace(const FileTrace& trace, TreeNodeRef& root);

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

  // The pieces of which every phase's finds are made. The root of a new threat, in both trees;
  // raises kKeyNotUnique when one stands already.
  TreeNodeRef AddThreatRoot(std::string_view name, std::string_view type);

  struct Trace {
    std::string_view text;      // the trace's own text
    bool ignored = false;       // it is on the safe list
    bool keyHasPrefix = false;  // the node's key holds the prefix before the text
    // The flat tree takes no second line for a trace that it shows as ignored.
    bool oncePerTrace = false;
  };
  // Shows a trace under its root as found, or as ignored unless the user hides those.
  void ShowTrace(const TreeNodeRef& root, const Trace& trace);

 private:
  void AddTraceChild(const TreeNodeRef& root, std::string_view prefix, const Trace& trace);
  std::string LevelColumn(std::string_view name) const;

  ResultsPage& page_;
  std::function<int(std::string_view)> levelOf_;
  Host& host_;
  ErrorLog& log_;
};

}  // namespace quarnel
