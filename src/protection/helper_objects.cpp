#include "protection/helper_objects.h"

#include <array>
#include <utility>

#include "base/text.h"
#include "core/messages.h"
#include "core/paths.h"
#include "platform/names.h"
#include "platform/version_info.h"

namespace quarnel {
namespace {

constexpr std::string_view kRecordFile = "qk_bho.ini";
constexpr std::string_view kObjects =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects";

// The keys of the record, by their numbers, and the one of the user's decision.
namespace record_key {
constexpr std::string_view kServer = "1";
constexpr std::string_view kCompany = "2";
constexpr std::string_view kFileVersion = "3";
constexpr std::string_view kProductVersion = "4";
constexpr std::string_view kHive = "5";
constexpr std::string_view kRegistration = "6";
constexpr std::string_view kValue = "7";
constexpr std::string_view kState = "DANGER";
}  // namespace record_key
constexpr size_t kNumberedKeys = 7;
// Where the row has the key of the registration.
constexpr size_t kRegistrationColumn = 6;

struct StateOfPicture {
  int picture;
  std::string_view name;
};
constexpr StateOfPicture kStates[] = {{helper_state::kBlocked, "BLOCKED"},
                                      {helper_state::kAllowed, "ALLOWED"},
                                      {helper_state::kUndecided, "NOTFOUND"}};

std::string ClassKey(std::string_view clsid) { return "CLSID\\" + std::string(clsid); }

std::string DefaultOf(Registry& registry, uint32_t root, std::string_view key) {
  std::string text;
  GetKeyValue(registry, root, key, "", text);
  return text;
}

void Put(cInifile& record, std::string_view key, std::string_view value) {
  record.SetKey(key);
  record.SetValue(value);
}

std::string Get(cInifile& record, std::string_view key) {
  record.SetKey(key);
  record.SetDefault("");
  return record.Value();
}

// Whether a key is the registration of one object. The record may have been changed by others, and
// nothing else is ever deleted or written for it.
bool IsRegistration(std::string_view key) {
  const size_t prefix = kObjects.size() + 1;
  return key.size() > prefix && StartsWithText(key, kObjects) && key[prefix - 1] == '\\' &&
         key.find('\\', prefix) == std::string_view::npos;
}

void RequireRegistration(std::string_view key) {
  if (!IsRegistration(key)) throw RuntimeError(ErrorNumber::kInvalidCall, key);
}

}  // namespace

std::string_view HelperStateName(int picture) {
  for (const StateOfPicture& state : kStates) {
    if (state.picture == picture) return state.name;
  }
  return {};
}

HelperObjects::HelperObjects(const Uses& uses) : u_(uses) {
  const auto wire = [this](Label& label, std::string_view procedure, Handler work) {
    label.Click = [this, procedure, work = std::move(work)] {
      Reporting(u_.services.log, procedure, work);
    };
  };
  wire(u_.page.lblAllowBHO, "lblAllowBHO_Click in frmMain", [this] { lblAllowBHO_Click(); });
  wire(u_.page.lblBlockBHO, "lblBlockBHO_Click in frmMain", [this] { lblBlockBHO_Click(); });
  u_.page.lvwBHOs.ItemClick = [this](size_t) { EnableChoice(true); };
  EnableChoice(false);
}

// They are about the selected row, and a refresh leaves none.
void HelperObjects::EnableChoice(bool enable) {
  u_.page.lblAllowBHO.SetEnabled(enable);
  u_.page.lblBlockBHO.SetEnabled(enable);
}

cInifile HelperObjects::Record() const {
  Platform& platform = u_.services.platform;
  cInifile record(platform.files(), platform.machine());
  record.SetPath(DataFolder(platform.machine()) + std::string(kRecordFile));
  return record;
}

std::string HelperObjects::GetBHOServerPath(std::string_view clsid) {
  return DefaultOf(u_.services.platform.registry(), hive::kClassesRoot,
                   ClassKey(clsid) + "\\InprocServer32");
}

std::string HelperObjects::GetBHOName(std::string_view clsid) {
  return DefaultOf(u_.services.platform.registry(), hive::kClassesRoot, ClassKey(clsid));
}

int HelperObjects::GetBHOStateIcon(const cInifile& record) {
  cInifile state = record;
  state.SetKey(record_key::kState);
  state.SetDefault(HelperStateName(helper_state::kUndecided));
  const std::string value = state.Value();
  for (const StateOfPicture& known : kStates) {
    if (known.name == value) return known.picture;
  }
  return helper_state::kOther;
}

// Everything that processes events comes first: what a user does meanwhile must find the record as
// the file has it.
std::vector<HelperObjects::Object> HelperObjects::ReadRegistered() {
  Registry& registry = u_.services.platform.registry();
  std::vector<Object> objects;
  std::unique_ptr<RegistryKey> list;
  if (registry.Open(hive::kLocalMachine, kObjects, registry_access::kRead, list) !=
      RegistryStatus::kSuccess) {
    return objects;
  }
  std::vector<std::string> ids;
  std::string name;
  for (uint32_t i = 0; list->EnumKey(i, name) == RegistryStatus::kSuccess; ++i) {
    if (const std::string_view id = Trim(CutAtNul(name)); !id.empty()) ids.emplace_back(id);
  }
  for (const std::string& id : ids) {
    Object object{.name = GetBHOName(id),
                  .server = GetBHOServerPath(id),
                  .key = std::string(kObjects) + "\\" + id};
    object.value = DefaultOf(registry, hive::kLocalMachine, object.key);
    Describe(object);
    objects.push_back(std::move(object));
  }
  return objects;
}

// What the server file says of itself. It is read once, until it has changed.
void HelperObjects::Describe(Object& object) {
  Files& files = u_.services.platform.files();
  const auto entry = files.Stat(object.server);
  if (!entry || entry->IsFolder()) return;
  // As FileExists, without a second look.
  constexpr uint32_t kUnseen = file_attribute::kSystem | file_attribute::kHidden;
  const std::string_view name =
      std::string_view(object.server).substr(object.server.rfind('\\') + 1);
  object.fileExists = (entry->attributes & kUnseen) == 0 && EqualNames(entry->name, name);
  FileFacts facts{.size = entry->size, .modified = entry->modified};
  FileFacts& known = files_[object.server];
  if (known.size != facts.size || known.modified != facts.modified) {
    facts.company = GetCompanyName(files, object.server, [this] {
      u_.services.host.DoEvents();
      return true;
    });
    if (const auto version = GetFileVersionInfo(u_.services.platform.versions(), object.server)) {
      facts.fileVersion = version->fileVersion;
      facts.productVersion = version->productVersion;
    }
    known = std::move(facts);
  }
  object.company = known.company;
  object.fileVersion = known.fileVersion;
  object.productVersion = known.productVersion;
}

// The user's decision is not touched: a new object has none.
void HelperObjects::Enter(cInifile& record, const Object& object) {
  record.SetSection(object.name);
  Put(record, record_key::kValue, object.value);
  Put(record, record_key::kCompany, object.company);
  Put(record, record_key::kServer, object.server);
  if (object.fileExists) {
    Put(record, record_key::kFileVersion, object.fileVersion);
    Put(record, record_key::kProductVersion, object.productVersion);
  } else {
    Put(record, record_key::kFileVersion, object.server);
  }
  Put(record, record_key::kHive, "HKEY_LOCAL_MACHINE");
  Put(record, record_key::kRegistration, object.key);
}

void HelperObjects::ReadRows(cInifile& record) {
  rows_.clear();
  std::vector<std::string> names;
  long count = 0;
  record.EnumerateAllSections(names, count);
  for (const std::string& name : names) {
    record.SetSection(name);
    ListRow row{.text = name, .look = {.picture = GetBHOStateIcon(record)}};
    for (size_t key = 1; key <= kNumberedKeys; ++key) {
      row.subItems.push_back(Get(record, std::to_string(key)));
    }
    rows_.push_back(std::move(row));
  }
}

void HelperObjects::LoadBHOList(ListView& list) {
  ++refreshes_;
  list.Clear();
  EnableChoice(false);
  std::vector<Object> objects = ReadRegistered();
  cInifile record = Record();
  record.Hold();
  if (refreshes_ == 1 || objects != shown_ || record.HeldText() != shownRecord_) {
    for (const Object& object : objects) Enter(record, object);
    ReadRows(record);
    shownRecord_ = record.HeldText();
    shown_ = std::move(objects);
  }
  record.Release();
  list.Clear();
  for (const ListRow& row : rows_) list.Add(row);
}

bool HelperObjects::Ask(const std::string& title, const std::string& text) const {
  return u_.services.host.MsgBox({.text = text,
                                  .title = title,
                                  .icon = MessageIcon::kQuestion,
                                  .buttons = MessageButtons::kYesNo}) == Answer::kYes;
}

// The list may have been filled anew while the user was asked.
void HelperObjects::SetState(const std::string& section, std::string_view state, int picture) {
  cInifile record = Record();
  record.SetSection(section);
  Put(record, record_key::kState, state);
  ListView& list = u_.page.lvwBHOs;
  const auto row = list.FindText(section);
  if (!row) return;
  Look look = list.At(*row).look;
  look.picture = picture;
  list.SetLook(*row, look);
}

void HelperObjects::lblBlockBHO_Click() {
  const ListView& list = u_.page.lvwBHOs;
  const auto selected = list.SelectedRow();
  if (!selected) return;
  const std::string name = list.At(*selected).text;
  const std::string key(list.At(*selected).SubItem(kRegistrationColumn));
  RequireRegistration(key);
  if (!Ask("Block Browser Helper Object",
           "Are you sure you would like to block " + name +
               " from your available Browser Helper Objects in Internet Explorer? Blocking this "
               "BHO can cause problems for application that requires this program to operate "
               "properly. You can un-block a file using the [Allow this BHO].\r\n\r\nBlock now?")) {
    return;
  }
  SetState(name, HelperStateName(helper_state::kBlocked), helper_state::kBlocked);
  DeleteKeyTree(u_.services.platform.registry(), hive::kLocalMachine, key,
                [this] { u_.services.host.DoEvents(); });
  Messages(u_.services.host, u_.services.settings)
      .Inform("BHO " + name +
                  " has been blocked. You will need to restart all the instances of Internet "
                  "Explorer before this change takes effects.",
              "Block Successful");
}

void HelperObjects::lblAllowBHO_Click() {
  const ListView& list = u_.page.lvwBHOs;
  const auto selected = list.SelectedRow();
  if (!selected) return;
  const std::string name = list.At(*selected).text;
  if (!Ask("Restore Browser Helper Object", "Are you sure you want to restore BHO " + name + "?")) {
    return;
  }
  cInifile record = Record();
  record.SetSection(name);
  const std::string key = Get(record, record_key::kRegistration);
  const std::string value = Get(record, record_key::kValue);
  RequireRegistration(key);
  SetState(name, HelperStateName(helper_state::kAllowed), helper_state::kAllowed);
  // On a key that is missing the first call makes the key only.
  for (int call = 0; call < 2; ++call) {
    SetKeyValue(u_.services.platform.registry(), hive::kLocalMachine, key, "", value,
                ValueType::kString);
  }
}

}  // namespace quarnel
