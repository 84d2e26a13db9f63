#include "scan/scan_records.h"

#include <array>
#include <string>
#include <vector>

#include "base/text.h"
#include "core/inifile.h"
#include "core/lines.h"
#include "core/own_files.h"
#include "core/paths.h"

namespace quarnel {
namespace {

constexpr std::string_view kBetweenColumns = "[[]]";

struct Dump {
  std::string_view file;
  ListView ResultsPage::*list;

  std::string PathOn(Machine& machine) const { return DataFolder(machine) + std::string(file); }
};

constexpr std::array<Dump, 4> kDumps = {
    Dump{"10001.qks", &ResultsPage::lvwPicRemoveListOfSpywareFoundAndToBeRemoved},
    Dump{"10002.qks", &ResultsPage::lvwTrackingCookieObjectrecognized},
    Dump{"10003.qks", &ResultsPage::lvwRegistryEntriesFound},
    Dump{"10004.qks", &ResultsPage::lvwFilesToBeDeleted},
};

std::vector<WholeFile> LastScanResults(Machine& machine, const ResultsPage& results) {
  std::vector<WholeFile> files;
  for (const Dump& dump : kDumps) {
    const ListView& list = results.*dump.list;
    std::string text;
    for (const ListRow& row : list.Rows()) {
      text += row.text;
      for (size_t column = 1; column < list.ColumnHeaders().size(); ++column) {
        text.append(kBetweenColumns).append(row.SubItem(column));
      }
      text += "\r\n";
    }
    files.push_back({dump.PathOn(machine), std::move(text)});
  }
  return files;
}

template <typename Action>
void KeepingRecord(Unread& unread, std::string_view record, const Action& action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    unread.AddNotSaved(record, error.Description());
  }
}

}  // namespace

void SaveLastScanResults(Files& files, Machine& machine, const ResultsPage& results,
                         Unread& unread) {
  const std::vector<WholeFile> dumps = LastScanResults(machine, results);
  std::vector<WholeFile> all = dumps;
  all.push_back(UnreadFile(machine, unread));
  // What was not read is of less weight: when not all can be saved, the results are.
  if (IgnoringErrors([&] { ReplaceOwnFiles(files, machine, all); })) return;
  KeepingRecord(unread, "the lists of results", [&] { ReplaceOwnFiles(files, machine, dumps); });
  KeepingRecord(unread, "what was not read", [&] {
    const WholeFile file = UnreadFile(machine, unread);
    ReplaceOwnFile(files, machine, file.path, file.bytes);
  });
}

bool LoadLastScanResults(Files& files, Machine& machine, ResultsPage& results) {
  return IgnoringErrors([&] {
    for (const Dump& dump : kDumps) {
      const std::string path = OwnFileToRead(files, machine, dump.PathOn(machine));
      const std::string text = ReadWholeFile(files, path);
      LineReader lines(text);
      while (const auto line = lines.Next()) {
        std::vector<std::string> columns = Split(*line, kBetweenColumns);
        std::string first = std::move(columns.front());
        columns.erase(columns.begin());
        (results.*dump.list).Add({.text = std::move(first), .subItems = std::move(columns)});
      }
    }
  });
}

void WriteScanHistory(Files& files, Machine& machine, std::string_view key, std::string_view value,
                      Unread& unread) {
  constexpr std::string_view kHistoryFile = "ScanHistory.ini";
  cInifile history(files, machine);
  history.SetPath(GetPathWithSlash(machine.ProgramFolder()) + std::string(kHistoryFile));
  history.SetSection("Scan History");
  history.SetKey(key);
  history.SetValue(value);
  if (!history.Success()) unread.AddNotSaved(kHistoryFile, "it cannot be written");
}

void SaveScanTime(Settings& settings, const SettingKey<setting::Date>& key, const DateTime& time,
                  Unread& unread) {
  KeepingRecord(unread, "the time of the scan", [&] {
    try {
      settings.Save(key, time);
    } catch (const RuntimeError&) {
      unread.AddBrokenRegistry("the program's settings");
      throw;
    }
  });
}

}  // namespace quarnel
