#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include "scan/hash_ahead.h"
#include "scan/scan_context.h"
#include "scan/tree_walk.h"
#include "signatures/hash_index.h"

namespace quarnel {

// Walks a drive or a folder, hashes each file and looks the hash up in the text of QNLESig.dll: a
// threat is found wherever it lies.
class DeepScan {
 public:
  // `pool` hashes ahead of the walk; without one each file is hashed when its turn comes, with the
  // same results.
  DeepScan(const ScanContext& context, HashPool* pool) : u_(context), pool_(pool) {}

  // Loads SignatureHashText; false when its file is missing. Stop leaves it empty.
  bool LoadSignatureHashText();

  // The whole drive "C:\", if it answers. SignatureHashText is empty afterwards.
  void ScanDrive(std::string_view drive);
  // One folder with all below it; here the bar knows the number of entries.
  void ScanFolder(std::string_view folder);

  // The number of entries below a folder, "." and ".." included. Without `reset` it is added to
  // what the calls before counted.
  double SizeFindFilesAPI(std::string_view path, bool reset);

 private:
  // An entry of the walk that was taken ahead. Tens of thousands of them may wait: a file that is
  // being hashed is known to the queue, in the same order, and is null here.
  using Step = std::unique_ptr<TreeWalk::Entry>;
  // Where the present entry stands.
  struct Place {
    const std::string& folder;
    const std::string& name;
  };
  struct Walk {
    TreeWalk tree;
    std::deque<Step> ahead;
    std::string skipped;  // the folder below which an error ended the work
  };

  void ScanBelow(std::string_view path, double maximum);
  void FindFilesAPI(std::string_view path);
  void TakeAhead(Walk& walk, HashQueue* queue);
  void InspectEntry(const Place& place, bool hashed, Walk& walk, HashQueue* queue);
  void ShowProgress(const std::string& path);
  std::string HashOf(const std::string& path, Walk& walk, HashQueue* queue);
  bool GoesOn();
  void EnterFind(const std::string& path, size_t position);

  ScanContext u_;
  HashPool* pool_;
  HashIndex signatureHashText_;
  double total_ = 0;
};

}  // namespace quarnel
