#include "scan/deep_scan.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "base/text.h"
#include "core/paths.h"
#include "scan/found_traces.h"
#include "scan/progress.h"
#include "signatures/md5.h"
#include "signatures/signature_files.h"

namespace quarnel {
namespace {

// A file is hashed when it has one of these attributes and a point in its name: read-only, hidden,
// system, archive, normal, temporary.
constexpr uint32_t kHashedAttributes = 0x1A7;

// Every find of the deep scan is shown as this, whatever the signature says.
constexpr std::string_view kFixedType = "Adware";

bool IsHashed(const DirectoryEntry& entry) {
  // What a link leads to may carry none of them, and what could not be looked at may be anything.
  const bool hasOne = (entry.attributes & kHashedAttributes) != 0 || entry.IsLink() || entry.unseen;
  return !entry.IsFolder() && hasOne && entry.name.find('.') != std::string::npos;
}

// The line of the text that holds a position.
std::string_view LineAt(std::string_view text, size_t position) {
  const size_t before = text.rfind("\r\n", position);
  const size_t begin = before == std::string_view::npos ? 0 : before + 2;
  const size_t end = text.find("\r\n", position);
  return text.substr(begin, end == std::string_view::npos ? end : end - begin);
}

}  // namespace

bool DeepScan::LoadSignatureHashText() {
  if (!SignaturePresent(u_.files, u_.machine, signature_file::kPrograms)) return false;
  u_.page.lblPercentageCompleted.SetCaption("Loading signatures. Please wait...");
  u_.host.DoEvents();
  signatureHashText_ = HashIndex::Load(u_.files, u_.machine, signature_file::kPrograms, 2,
                                       [this] { return GoesOn(); });
  return true;
}

void DeepScan::ScanDrive(std::string_view drive) {
  Reporting(u_.log, "ScanDrive in frmMain", [&] {
    u_.page.lblStatus.SetCaption("");
    const auto volume = u_.machine.Volume(drive);
    if (!volume) return u_.unread.Add("drive", drive);
    // Bytes against a count of files: the bar stays near its start.
    const uint64_t used = volume->totalBytes - std::min(volume->freeBytes, volume->totalBytes);
    ScanBelow(drive,
              static_cast<double>(std::min<uint64_t>(used, std::numeric_limits<int32_t>::max())));
  });
}

void DeepScan::ScanFolder(std::string_view folder) {
  Reporting(u_.log, "ScanFolder in frmMain", [&] {
    u_.page.lblStatus.SetCaption("");
    ScanBelow(folder, std::nearbyint(SizeFindFilesAPI(folder, true)));
  });
}

void DeepScan::ScanBelow(std::string_view path, double maximum) {
  u_.page.pbgMain.SetValue(0);
  u_.page.pbgMain.SetMax(maximum);
  u_.page.lblScanning.SetCaption("");
  u_.page.lblPercentageCompleted.SetCaption("0% Completed.");
  u_.page.facts.named = u_.page.facts.percent = true;
  Show(u_.page);
  FindFilesAPI(path);
  u_.page.lblPercentageCompleted.SetCaption("100% Completed.");
  u_.page.pbgMain.SetValue(u_.page.pbgMain.Max());
  u_.page.facts.named = false;
  Show(u_.page);
  signatureHashText_ = {};
}

double DeepScan::SizeFindFilesAPI(std::string_view path, bool reset) {
  if (reset) total_ = 0;
  Reporting(u_.log, "SizeFindFilesAPI", [&] {
    Unread unread;  // the walk that follows notes what cannot be listed
    TreeWalk walk(u_.files, unread, path);
    constexpr double kDotEntries = 2;
    total_ += kDotEntries;
    while (const auto entry = walk.Next()) {
      if (u_.flags.scanStopRequested) return;
      total_ += entry->found.IsFolder() ? 1 + kDotEntries : 1;
      u_.host.DoEvents();
    }
  });
  return total_;
}

bool DeepScan::GoesOn() {
  u_.host.DoEvents();
  return !u_.flags.scanStopRequested;
}

// Takes entries from the walk, so that the pool always has enough to hash while the entries are
// shown one by one.
void DeepScan::TakeAhead(Walk& walk, HashQueue* queue) {
  // In one go from few to full: the pool's lock is taken once for many files.
  // So many entries are worked on while one large file, which takes a thread as long as anything
  // its size, is awaited.
  constexpr size_t kMostAhead = 65536;
  if (!walk.ahead.empty() &&
      (!queue || !queue->RunsLow() || walk.ahead.size() > kMostAhead / 8 * 7)) {
    return;
  }
  while (walk.ahead.size() < kMostAhead && (queue ? !queue->Full() : walk.ahead.empty())) {
    auto entry = walk.tree.Next();
    if (!entry) break;
    if (queue && IsHashed(entry->found)) {
      queue->Add(std::move(entry->folder), std::move(entry->found.name));
      walk.ahead.push_back(nullptr);
    } else {
      walk.ahead.push_back(std::make_unique<TreeWalk::Entry>(std::move(*entry)));
    }
  }
  if (queue) queue->Flush();
}

void DeepScan::FindFilesAPI(std::string_view path) {
  u_.page.facts.measured = true;
  Show(u_.page);
  Walk walk{.tree = TreeWalk(u_.files, u_.unread, path), .ahead = {}, .skipped = {}};
  std::optional<HashQueue> queue;
  if (pool_) queue.emplace(*pool_, u_.files);
  HashQueue* const ahead = queue ? &*queue : nullptr;
  while (GoesOn()) {
    TakeAhead(walk, ahead);
    if (walk.ahead.empty()) return;
    const Step step = std::move(walk.ahead.front());
    walk.ahead.pop_front();
    const auto job = step ? nullptr : queue->First();
    const Place place =
        job ? Place{job->Folder(), job->Name()} : Place{*step->folder, step->found.name};
    if (!walk.skipped.empty() && place.folder.starts_with(walk.skipped)) {
      if (job) ahead->Next([this] { return GoesOn(); });
      continue;
    }
    const bool hashed = job || IsHashed(step->found);
    // An error ends the work on the folder and on all below it.
    const auto where = [&] { return "below " + place.folder; };
    if (!ReportingPhase(u_, "FindFilesAPI", phase::kDeep, where,
                        [&] { InspectEntry(place, hashed, walk, ahead); })) {
      walk.skipped = place.folder;
    }
  }
}

void DeepScan::ShowProgress(const std::string& path) {
  u_.page.lblStatus.SetCaption(path);
  CountUp(u_.page.lblMD5Scanned);
  ProgressBar& bar = u_.page.pbgMain;
  if (bar.Value() + 1 <= bar.Max()) bar.SetValue(bar.Value() + 1);
  u_.page.lblScanning.SetCaption(path);
  ShowPercent(u_.page.lblPercentageCompleted, "Deep system scan ", std::min(PercentOf(bar), 99),
              "% completed.");
}

std::string DeepScan::HashOf(const std::string& path, Walk& walk, HashQueue* queue) {
  bool grew = false;
  if (queue) {
    const auto job = queue->First();
    std::string hash = queue->Next([&] {
      if (!GoesOn()) return false;
      // While one large file is awaited the others go on.
      TakeAhead(walk, queue);
      return true;
    });
    // The pool opens a file only where the listing named it; what it missed gets a second look.
    if (hash != kNoHash && job->Grew()) u_.unread.Add("file", path);
    if (hash != kNoHash || u_.flags.scanStopRequested) return hash;
  }
  std::string hash = HashFile(
      u_.files, path, [this] { return !GoesOn(); }, &grew);
  if (grew) u_.unread.Add("file", path);
  return hash;
}

void DeepScan::InspectEntry(const Place& place, bool hashed, Walk& walk, HashQueue* queue) {
  const std::string path = place.folder + place.name;
  ShowProgress(path);
  if (!hashed) return;
  const std::string hash = HashOf(path, walk, queue);
  if (u_.flags.scanStopRequested) return;
  if (hash == kNoHash) {
    u_.unread.Add("file", path);
    return;
  }
  // A file that an earlier phase entered, or showed as ignored, is one trace.
  const auto position = signatureHashText_.Find(hash);
  if (!position) return;
  const std::vector<std::string> known = u_.results.FilesNamed(path);
  const bool isKnown = std::any_of(known.begin(), known.end(), [&](const std::string& other) {
    return LeadToOneFile(u_.files, other, path);
  });
  if (!isKnown) EnterFind(path, *position);
}

void DeepScan::EnterFind(const std::string& path, size_t position) {
  const std::vector<std::string> fields = Split(LineAt(signatureHashText_.Text(), position), "^");
  if (fields.size() < 3) {
    throw RuntimeError(
        ErrorNumber::kSubscriptOutOfRange,
        LineOf(signature_file::kPrograms, LineNumber(signatureHashText_.Text(), position)));
  }
  const std::string name(Trim(fields[2]));
  const std::string type(kFixedType);
  const Results::Entered entered =
      u_.results.Enter({.threat = {.name = name, .typeName = type, .company = name},
                        .trace = FileTrace{.path = path, .typeName = type, .threatName = name},
                        .text = path});
  if (!entered.isNew) return;
  CountUp(u_.page.lblMD5Infected);
  u_.resultsPage.vbatvwResults.Select(entered.root);
}

}  // namespace quarnel
