#include "scan/registry_scan.h"

#include "base/text.h"
#include "scan/folders.h"
#include "scan/progress.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

// The fields of a line in QNLRSig.dll.
enum SignatureField { kCompany, kThreatName, kTypeCode, kMainKey, kKey, kValueName, kValueData };

constexpr std::string_view kProtectedStorage =
    "Software\\Microsoft\\Protected Storage System Provider";

// A word between "[[" and "]]" and what stands behind it.
struct Token {
  std::string_view word;
  std::string_view rest;
};

std::optional<Token> FindToken(std::string_view text, size_t opening) {
  const size_t closing = text.find("]]", opening + 2);
  if (closing == std::string_view::npos) return std::nullopt;
  return Token{text.substr(opening + 2, closing - opening - 2), text.substr(closing + 2)};
}

// A marker anywhere in the text keeps the case of what follows its first four characters; without
// one the text is folded to upper case.
std::string Unmarked(std::string_view text, std::string_view marker) {
  if (FindText(text, marker) == std::string_view::npos) return ToUpper(text);
  return std::string(text.substr(std::min<size_t>(marker.size(), text.size())));
}

}  // namespace

std::string GetSSID(Registry& registry) {
  registry.SetKeySecurity(hive::kCurrentUser, kProtectedStorage, registry.AccountName(),
                          registry_access::kGenericAll);
  const auto names = EnumSubKeys(registry, hive::kCurrentUser, kProtectedStorage);
  return names.empty() ? std::string() : names.front();
}

void RegistryScan::ScanRegistry() {
  // The blank at the label's end is part of the log's format.
  size_t line = 1;
  const auto where = [&] { return LineOf(signature_file::kRegistry, line); };
  ReportingPhase(u_, "ScanRegistry in frmMain ", phase::kRegistry, where, [&] {
    if (!SignaturePresent(u_.files, u_.machine, signature_file::kRegistry)) return;
    u_.page.facts.told = true;
    Show(u_.page);
    SignatureLines lines(u_.files, u_.machine, signature_file::kRegistry);
    Record record;
    for (;;) {
      ++line;
      const auto text = lines.Next();
      if (!text || u_.flags.scanStopRequested) return;
      ScanLine(*text, record);
      if (u_.flags.scanStopRequested) return;
      u_.host.DoEvents();
    }
  });
}

void RegistryScan::ReadKeyField(std::string_view field, Record& record) {
  const size_t opening = field.find("[[");
  if (opening == std::string_view::npos) {
    record.key = field;
    return;
  }
  const auto token = FindToken(field, opening);
  if (!token || token->word != "HKEYUSERVALUE") return;
  record.key = "KEY:" + GetSSID(registry_) + "\\" + std::string(token->rest);
}

void RegistryScan::ScanLine(std::string_view line, Record& record) {
  const int inspected = CountUp(u_.page.lblRegistryInspected);
  if (inspected <= u_.page.pbgMain.Max()) u_.page.pbgMain.SetValue(inspected);
  ShowPercent(u_.page.lblPercentageCompleted, "Scanning Registry : ", PercentOf(u_.page.pbgMain),
              "% Completed.");

  const SignatureFields fields(line);
  record.mainKey = std::to_string(static_cast<int32_t>(GetMainKeyFromFile(fields[kMainKey])));
  ReadKeyField(fields[kKey], record);
  record.valueName = fields[kValueName];
  record.valueData = fields[kValueData];

  Entry entry;
  entry.hive = static_cast<uint32_t>(ToLong(std::string_view(record.mainKey)));
  entry.key = Unmarked(record.key, "KEY:");
  entry.valueName = Unmarked(record.valueName, "KVN:");
  u_.page.lblStatus.SetCaption(ToLower(entry.key) + ToLower(entry.valueName));
  entry.company = fields[kCompany];
  entry.threatName = fields[kThreatName].empty() ? "Unknown" : fields[kThreatName];
  entry.threatType = GetTypeOfSpyWare(fields[kTypeCode]);
  if (entry.valueName.find("[[") == std::string::npos) {
    LoadSpywareRegistryToBeDeleted(entry);
  } else {
    TestFolders(entry);
  }
}

void RegistryScan::TestFolders(const Entry& entry) {
  const auto token = FindToken(entry.valueName, entry.valueName.find("[["));
  if (!token) return;
  for (const std::string& folder : GetRegistryFolder(u_.machine, registry_, token->word)) {
    if (u_.flags.scanStopRequested) return;
    Entry inFolder = entry;
    inFolder.valueName = folder + std::string(token->rest);
    LoadSpywareRegistryToBeDeleted(inFolder);
    u_.host.DoEvents();
  }
}

bool RegistryScan::Exists(const Entry& entry) {
  // Asking for the right to write makes a key that the user may only read count as missing: it
  // could not be cleaned either.
  std::unique_ptr<RegistryKey> key;
  const RegistryStatus status =
      registry_.Open(entry.hive, entry.key, registry_access::kReadWrite, key);
  if (status != RegistryStatus::kSuccess) return false;
  RegistryValue value;
  return entry.valueName.empty() || QueryValueEx(*key, entry.valueName, value);
}

void RegistryScan::LoadSpywareRegistryToBeDeleted(Entry& entry) {
  Reporting(u_.log, "LoadSpywareRegistryToBeDeleted", [&] {
    const std::string user = GetCurrentUser(u_.machine);
    entry.key = Replace(entry.key, kUserToken, user);
    entry.valueName = Replace(entry.valueName, kUserToken, user);
    if (entry.key.find("CB:") != std::string::npos) {
      entry.key.erase(0, 3);
      RegistryValue value;
      if (!QueryValue(registry_, entry.hive, entry.key, entry.valueName, value)) {
        const size_t slash = entry.key.rfind('\\');
        if (slash == std::string::npos) return;
        entry.valueName = entry.key.substr(slash + 1);
        entry.key.erase(slash);
      }
    }
    if (Exists(entry)) Enter(entry);
  });
}

void RegistryScan::Enter(const Entry& entry) {
  const std::string name(Trim(entry.threatName));
  const RegistryTrace trace{.company = std::string(Trim(entry.company)),
                            .threatName = name,
                            .typeName = std::string(Trim(entry.threatType)),
                            .hive = entry.hive,
                            .key = entry.key,
                            .valueName = entry.valueName};
  u_.results.Enter(
      {.threat = {.name = name, .typeName = entry.threatType, .company = entry.company},
       .trace = trace,
       .text = RegistryTraceText(HiveName(entry.hive), Trim(entry.key), Trim(entry.valueName)),
       .ignoredIsListed = true,
       .rowsFirst = true,
       .keyHasPrefix = true});
  ResultsPage& page = u_.resultsPage;
  if (page.lvwRegistryEntriesFound.Count() == 1) page.vbatvwResults.Refresh();
}

}  // namespace quarnel
