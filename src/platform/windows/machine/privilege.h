#pragma once

#include "platform/windows/unique_handle.h"

namespace quarnel {

// A privilege of this process that is raised for as long as this object lives.
class RaisedPrivilege {
 public:
  explicit RaisedPrivilege(const wchar_t* name);
  ~RaisedPrivilege();
  RaisedPrivilege(const RaisedPrivilege&) = delete;
  RaisedPrivilege& operator=(const RaisedPrivilege&) = delete;

  // Whether the user has it.
  bool Raised() const { return raised_; }
  // Leaves it raised.
  void Keep() { before_.PrivilegeCount = 0; }

 private:
  KernelHandle token_;
  TOKEN_PRIVILEGES before_ = {};
  bool raised_ = false;
};

}  // namespace quarnel
