#pragma once

#include <string_view>

#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "controls/tree_view.h"

namespace quarnel {

// What decides which controls of the results page show; Show follows it.
struct ResultsFacts {
  bool dealtWith = true;    // the buttons for results that have been dealt with
  bool cancellable = true;  // the one that stops a scan from here
  bool removable = true;    // the choice of what is removed, ...
  bool restorable = true;   // ... of a restore point before, ...
  bool exemptable = true;   // ... and of what goes to the safe list
  bool forward = true;      // the ways on to the removal ...
  bool back = true;         // ... and back to the summary
  bool leftPane = true;
  bool rightPane = true;
  bool flatTree = true;
};

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

  ResultsFacts facts;
};

// Lets the page's controls show what its facts say.
void Show(ResultsPage& page);

// The mark that imgNext(0) carries while results wait to be dealt with.
inline constexpr std::string_view kResultMode = "ResultMode";

}  // namespace quarnel
