#include "platform/posix/registry_store.h"

#include <charconv>
#include <string>

#include "base/runtime_error.h"
#include "base/text.h"

namespace quarnel {
namespace {

constexpr int64_t kApplicationId = 0x514E5247;  // "QNRG"
constexpr int64_t kSchemaVersion = 1;

constexpr const char* kSchema = R"(
  CREATE TABLE keys(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    parent INTEGER NOT NULL,
    name TEXT NOT NULL,
    path TEXT NOT NULL UNIQUE,
    owner TEXT,
    rights TEXT);
  CREATE INDEX keys_by_parent ON keys(parent, path);
  CREATE TABLE key_values(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    key INTEGER NOT NULL REFERENCES keys(id) ON DELETE CASCADE,
    name TEXT NOT NULL,
    folded TEXT NOT NULL,
    type INTEGER NOT NULL,
    data BLOB NOT NULL,
    UNIQUE(key, folded));
  PRAGMA application_id = 0x514E5247;
  PRAGMA user_version = 1;
)";

int64_t SingleNumber(Database& database, std::string_view sql) {
  Statement statement(database, sql);
  Statement::Run run(statement);
  return run.Next() ? run.GetNumber(0) : 0;
}

// Opens the file as a registry, which is made when the file is new.
Database OpenDatabase(const std::string& path) {
  Database database(path);
  database.Execute("PRAGMA journal_mode = WAL");
  database.Execute("PRAGMA synchronous = NORMAL");
  database.Execute("PRAGMA foreign_keys = ON");
  // What a hostile file could make its own schema do stays undone.
  sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  Transaction transaction(database);  // two programs may find the file new at once
  if (SingleNumber(database, "SELECT count(*) FROM sqlite_schema") == 0 &&
      SingleNumber(database, "PRAGMA application_id") == 0) {
    database.Execute(kSchema);
  } else if (SingleNumber(database, "PRAGMA application_id") != kApplicationId) {
    throw RuntimeError(ErrorNumber::kInvalidCall, path + " is not the registry of a machine");
  } else if (SingleNumber(database, "PRAGMA user_version") != kSchemaVersion) {
    throw RuntimeError(ErrorNumber::kInvalidCall, path + " is of another version of the program");
  }
  transaction.Commit();
  return database;
}

constexpr uint32_t kAllAccess = 0xF003F;
constexpr std::string_view kEveryone = "Everyone";

std::string RightsText(const std::vector<KeyRights::Entry>& list) {
  std::string text;
  for (const KeyRights::Entry& entry : list) {
    char digits[8];
    const auto [end, error] = std::to_chars(std::begin(digits), std::end(digits), entry.access, 16);
    text.append(entry.account).append(":0x").append(std::begin(digits), end).append("\n");
  }
  return text;
}

std::vector<KeyRights::Entry> ParseRights(std::string_view text) {
  std::vector<KeyRights::Entry> list;
  for (const std::string& line : Split(text, "\n")) {
    const size_t colon = line.rfind(":0x");
    if (colon == std::string::npos) continue;
    KeyRights::Entry entry{line.substr(0, colon), 0};
    const char* end = line.data() + line.size();
    const auto [last, error] = std::from_chars(line.data() + colon + 3, end, entry.access, 16);
    if (error == std::errc() && last == end) list.push_back(std::move(entry));
  }
  return list;
}

}  // namespace

uint32_t KeyRights::GrantedTo(std::string_view account) const {
  if (!list) return ~uint32_t{0};
  constexpr uint32_t kReadControl = 0x20000;
  uint32_t granted = 0;
  if (owner && EqualText(*owner, account)) granted = kReadControl | registry_access::kWriteDac;
  for (const Entry& entry : *list) {
    if (!EqualText(entry.account, account) && !EqualText(entry.account, kEveryone)) continue;
    granted |= entry.access;
  }
  if ((granted & registry_access::kGenericAll) != 0) granted |= kAllAccess;
  return granted;
}

struct RegistryStore::Statements {
  explicit Statements(Database& database)
      : find(database, "SELECT id, owner, rights FROM keys WHERE path = ?"),
        exists(database, "SELECT 1 FROM keys WHERE id = ?"),
        add(database,
            "INSERT INTO keys(parent, name, path, owner, rights) VALUES(?1, ?2, ?3,"
            " (SELECT owner FROM keys WHERE id = ?1), (SELECT rights FROM keys WHERE id = ?1))"),
        hasSubKeys(database, "SELECT 1 FROM keys WHERE parent = ? LIMIT 1"),
        remove(database, "DELETE FROM keys WHERE id = ?"),
        setRights(database, "UPDATE keys SET owner = ?, rights = ? WHERE id = ?"),
        getValue(database, "SELECT type, data FROM key_values WHERE key = ? AND folded = ?"),
        setValue(database,
                 "INSERT INTO key_values(key, name, folded, type, data) VALUES(?, ?, ?, ?, ?)"
                 " ON CONFLICT(key, folded) DO UPDATE SET type = excluded.type,"
                 " data = excluded.data"),
        removeValue(database, "DELETE FROM key_values WHERE key = ? AND folded = ?"),
        subKeyNames(database, "SELECT name FROM keys WHERE parent = ? ORDER BY path"),
        valueNames(database, "SELECT name FROM key_values WHERE key = ? ORDER BY id"),
        dataVersion(database, "PRAGMA data_version") {}

  Statement find, exists, add, hasSubKeys, remove, setRights, getValue, setValue, removeValue,
      subKeyNames, valueNames, dataVersion;
};

RegistryStore::RegistryStore(const std::string& path)
    : database_(OpenDatabase(path)), statements_(std::make_unique<Statements>(database_)) {}

RegistryStore::~RegistryStore() = default;

std::optional<RegistryStore::Key> RegistryStore::Find(std::string_view path) {
  Statement::Run run(statements_->find);
  if (!run.Text(path).Next()) return std::nullopt;
  Key key{run.GetNumber(0), {}};
  if (!run.IsNull(1)) key.rights.owner = run.GetBytes(1);
  if (!run.IsNull(2)) key.rights.list = ParseRights(run.GetBytes(2));
  return key;
}

bool RegistryStore::Exists(int64_t key) {
  return Statement::Run(statements_->exists).Number(key).Next();
}

int64_t RegistryStore::Add(int64_t parent, std::string_view name, std::string_view path) {
  Statement::Run(statements_->add).Number(parent).Text(name).Text(path).Finish();
  return database_.LastInsertId();
}

bool RegistryStore::HasSubKeys(int64_t key) {
  return Statement::Run(statements_->hasSubKeys).Number(key).Next();
}

void RegistryStore::Remove(int64_t key) {
  Statement::Run(statements_->remove).Number(key).Finish();
}

void RegistryStore::SetRights(int64_t key, const KeyRights& rights) {
  const std::string text = rights.list ? RightsText(*rights.list) : std::string();
  Statement::Run run(statements_->setRights);
  rights.owner ? run.Text(*rights.owner) : run.Null();
  rights.list ? run.Text(text) : run.Null();
  run.Number(key).Finish();
}

bool RegistryStore::GetValue(int64_t key, std::string_view name, RawValue& value) {
  const std::string folded = ToUpper(name);
  Statement::Run run(statements_->getValue);
  if (!run.Number(key).Text(folded).Next()) return false;
  value.type = static_cast<ValueType>(run.GetNumber(0));
  value.data = run.GetBytes(1);
  return true;
}

bool RegistryStore::SetValue(int64_t key, std::string_view name, const RawValue& value) {
  const std::string folded = ToUpper(name);
  Statement::Run run(statements_->setValue);
  run.Number(key).Text(name).Text(folded).Number(static_cast<int64_t>(value.type));
  run.Blob(value.data);
  try {
    run.Finish();
  } catch (const RuntimeError& error) {
    if (error.SystemCode() == SQLITE_CONSTRAINT_FOREIGNKEY) return false;
    throw;
  }
  return true;
}

bool RegistryStore::RemoveValue(int64_t key, std::string_view name) {
  const std::string folded = ToUpper(name);
  const int64_t before = database_.TotalChanges();
  Statement::Run(statements_->removeValue).Number(key).Text(folded).Finish();
  return database_.TotalChanges() != before;
}

std::vector<std::string> RegistryStore::Names(Statement& statement, int64_t key) {
  std::vector<std::string> names;
  Statement::Run run(statement);
  run.Number(key);
  while (run.Next()) names.emplace_back(run.GetBytes(0));
  return names;
}

std::vector<std::string> RegistryStore::SubKeyNames(int64_t key) {
  return Names(statements_->subKeyNames, key);
}

std::vector<std::string> RegistryStore::ValueNames(int64_t key) {
  return Names(statements_->valueNames, key);
}

int64_t RegistryStore::Version() {
  // The first number tells of other connections' changes, the second of this one's.
  Statement::Run run(statements_->dataVersion);
  run.Next();
  return (run.GetNumber(0) << 40) + database_.TotalChanges();
}

}  // namespace quarnel
