#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "core/inifile.h"
#include "core/services.h"
#include "protection/advanced_tools_page.h"

namespace quarnel {

// What the user has decided about a helper object, by the number of its row's picture.
namespace helper_state {
inline constexpr int kOther = 0;
inline constexpr int kUndecided = 2;
inline constexpr int kBlocked = 4;
inline constexpr int kAllowed = 5;
}  // namespace helper_state

// "BLOCKED", "ALLOWED", "NOTFOUND"; empty for any other number.
std::string_view HelperStateName(int picture);

// The Browser Helper Objects that are registered with the browser. Each that was ever seen stays in
// a record, so that one that was blocked, which takes its registration away, can be allowed again.
class HelperObjects {
 public:
  struct Uses {
    AdvancedToolsPage& page;
    Services services;
  };
  explicit HelperObjects(const Uses& uses);

  // Brings the record up to what is registered, and fills the list with the record. The rows are
  // made anew: none is selected afterwards. Writes nothing when there is nothing new.
  void LoadBHOList(ListView& list);

  // How often that was done, and how many objects are registered just now.
  size_t Refreshes() const { return refreshes_; }
  size_t Registered() const { return shown_.size(); }

 private:
  // A registered object, as the record keeps it.
  struct Object {
    std::string name;
    std::string server;
    std::string company;
    std::string key;
    std::string value;
    bool fileExists = false;
    std::string fileVersion;
    std::string productVersion;
    bool operator==(const Object&) const = default;
  };
  // What was read of a server file, for as long as size and time are these.
  struct FileFacts {
    uint64_t size = 0;
    FileTime modified;
    std::string company;
    std::string fileVersion;
    std::string productVersion;
  };

  std::string GetBHOServerPath(std::string_view clsid);
  std::string GetBHOName(std::string_view clsid);
  static int GetBHOStateIcon(const cInifile& record);
  std::vector<Object> ReadRegistered();
  void Describe(Object& object);
  static void Enter(cInifile& record, const Object& object);
  void ReadRows(cInifile& record);
  cInifile Record() const;

  void lblAllowBHO_Click();
  void lblBlockBHO_Click();
  void SetState(const std::string& section, std::string_view state, int picture);
  bool Ask(const std::string& title, const std::string& text) const;
  void EnableChoice(bool enable);

  Uses u_;
  std::map<std::string, FileFacts, std::less<>> files_;
  // What the list was last filled from, and its rows.
  std::vector<Object> shown_;
  std::string shownRecord_;
  std::vector<ListRow> rows_;
  size_t refreshes_ = 0;
};

}  // namespace quarnel
