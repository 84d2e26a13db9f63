#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/windows/unique_handle.h"

namespace quarnel {

// Whether a link stands at a path of SystemPath: a symbolic link or a mounted folder. Other reparse
// points, such as those of a file kept elsewhere, are files like others.
bool IsLinkAt(const std::wstring& path);
bool IsLink(const WIN32_FIND_DATAW& found);

// The folders on the way to a place, none of them a link. They are held open without leave to
// delete, so that none can be renamed or replaced as long as this lives; calls by path are safe
// meanwhile.
class HeldWay {
 public:
  enum class End { kFolder, kItself };
  HeldWay() = default;
  // Holds what stands at the path's end too when `end` is kItself; what is missing there is none of
  // its business. Raises kPermissionDenied for a link.
  HeldWay(const std::wstring& path, End end, std::string_view about);

 private:
  std::vector<KernelHandle> handles_;
};

}  // namespace quarnel
