#include "scan/tree_walk.h"

#include "base/runtime_error.h"
#include "core/paths.h"

namespace quarnel {
TreeWalk::TreeWalk(Files& files, Unread& unread, std::string_view root)
    : files_(files), unread_(unread) {
  Enter(GetPathWithSlash(root));
}

void TreeWalk::Enter(std::string folder) {
  folder_ = std::make_shared<const std::string>(std::move(folder));
  entries_.clear();
  next_ = 0;
  if (!IgnoringErrors([&] { entries_ = files_.ListBriefly(*folder_); })) {
    unread_.Add("folder", *folder_);
  }
  for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry) {
    if (entry->IsFolder() && entry->IsLink()) {
      unread_.Add("link", *folder_ + entry->name);
    } else if (entry->IsFolder()) {
      toEnter_.push_back(*folder_ + entry->name + "\\");
    }
  }
}

std::optional<TreeWalk::Entry> TreeWalk::Next() {
  while (next_ == entries_.size()) {
    if (toEnter_.empty()) return std::nullopt;
    std::string folder = std::move(toEnter_.back());
    toEnter_.pop_back();
    Enter(std::move(folder));
  }
  return Entry{.folder = folder_, .found = std::move(entries_[next_++])};
}

}  // namespace quarnel
