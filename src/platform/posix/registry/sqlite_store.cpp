#include "platform/posix/registry/sqlite_store.h"

#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <string>

#include "base/hex.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/names.h"
#include "platform/posix/backends.h"
#include "platform/posix/registry/store_conversion.h"

namespace quarnel {
namespace {

constexpr int64_t kApplicationId = 0x514E5247;  // "QNRG"
constexpr int64_t kSchemaVersion = 2;
// Its names were folded for ASCII letters only.
constexpr int64_t kAsciiVersion = 1;

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
  CREATE TABLE twins(kind TEXT NOT NULL, id INTEGER NOT NULL);
  PRAGMA application_id = 0x514E5247;
  PRAGMA user_version = 2;
)";

int64_t SingleNumber(Database& database, std::string_view sql) {
  Statement statement(database, sql);
  Statement::Run run(statement);
  return run.Next() ? run.GetNumber(0) : 0;
}

bool May(const std::string& path, int right) {
  return faccessat(AT_FDCWD, path.c_str(), right, AT_EACCESS) == 0;
}

// What a hostile file could make its own schema do stays undone.
void Defend(Database& database) {
  sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
}

void RequireVersion(Database& database, const std::string& path) {
  if (SingleNumber(database, "PRAGMA application_id") != kApplicationId) {
    throw RuntimeError(ErrorNumber::kInvalidCall, path + " is not the registry of a machine");
  }
  if (SingleNumber(database, "PRAGMA user_version") != kSchemaVersion) {
    throw RuntimeError(ErrorNumber::kInvalidCall, path + " is of another version of the program");
  }
}

// Opens the file as a registry, which is made when the file is new.
Database OpenToWrite(const std::string& path) {
  Database database(path);
  database.Execute("PRAGMA journal_mode = WAL");
  database.Execute("PRAGMA synchronous = NORMAL");
  database.Execute("PRAGMA foreign_keys = ON");
  Defend(database);
  Transaction transaction(database);  // two programs may find the file new at once
  const int64_t application = SingleNumber(database, "PRAGMA application_id");
  if (SingleNumber(database, "SELECT count(*) FROM sqlite_schema") == 0 && application == 0) {
    database.Execute(kSchema);
  } else if (application == kApplicationId &&
             SingleNumber(database, "PRAGMA user_version") == kAsciiVersion) {
    FoldNamesWhole(database);
  }
  RequireVersion(database, path);
  transaction.Commit();
  return database;
}

// For a user who may look at the machine only. Changes that a killed program left beside the file
// would not be seen without its neighbours: then it is not opened.
Database OpenToRead(const std::string& path) {
  const bool isAlone = !May(path + "-wal", F_OK);
  Database database(path, isAlone ? Database::Access::kReadAlone : Database::Access::kRead);
  Defend(database);
  RequireVersion(database, path);
  return database;
}

Database OpenDatabase(const std::string& path) {
  const std::string folder = path.substr(0, path.rfind('/') + 1);
  const bool mayOnlyRead = May(path, R_OK) && !(May(path, W_OK) && May(folder, W_OK));
  return mayOnlyRead ? OpenToRead(path) : OpenToWrite(path);
}

std::string RightsText(const std::vector<KeyRights::Entry>& list) {
  std::string text;
  for (const KeyRights::Entry& entry : list) {
    text.append(entry.account).append(":0x").append(HexNumber(entry.access)).append("\n");
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

struct SqliteStore::Statements {
  explicit Statements(Database& database)
      : find(database, "SELECT id, owner, rights FROM keys WHERE path = ?"),
        exists(database, "SELECT 1 FROM keys WHERE id = ?"),
        add(database,
            "INSERT INTO keys(parent, name, path, owner, rights)"
            " SELECT id, ?2, path || '\\' || ?3, owner, rights FROM keys WHERE id = ?1"),
        addRoot(database, "INSERT INTO keys(parent, name, path) VALUES(0, ?, ?)"),
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

  Statement find, exists, add, addRoot, hasSubKeys, remove, setRights, getValue, setValue,
      removeValue, subKeyNames, valueNames, dataVersion;
};

SqliteStore::SqliteStore(const std::string& path)
    : database_(OpenDatabase(path)),
      statements_(std::make_unique<Statements>(database_)),
      hasTwins_(SingleNumber(database_, "SELECT count(*) FROM twins") != 0) {}

SqliteStore::~SqliteStore() = default;

std::string SqliteStore::FoldedPath(std::string_view path) {
  if (!hasTwins_ || IsAscii(path)) return FoldName(path);
  std::string folded;
  for (const std::string& name : Split(path, "\\")) {
    if (!folded.empty()) folded += '\\';
    std::string twin = folded + ToUpper(name);
    if (Statement::Run(statements_->find).Text(twin).Next()) {
      folded = std::move(twin);
    } else {
      folded += FoldName(name);
    }
  }
  return folded;
}

std::string SqliteStore::FoldedValue(int64_t key, std::string_view name) {
  if (hasTwins_ && !IsAscii(name)) {
    std::string twin = ToUpper(name);
    if (Statement::Run(statements_->getValue).Number(key).Text(twin).Next()) return twin;
  }
  return FoldName(name);
}

std::optional<SqliteStore::Key> SqliteStore::Find(std::string_view path) {
  const std::string folded = FoldedPath(path);
  Statement::Run run(statements_->find);
  if (!run.Text(folded).Next()) return std::nullopt;
  Key key{run.GetNumber(0), {}};
  if (!run.IsNull(1)) key.rights.owner = run.GetBytes(1);
  if (!run.IsNull(2)) key.rights.list = ParseRights(run.GetBytes(2));
  return key;
}

bool SqliteStore::Exists(int64_t key) {
  return Statement::Run(statements_->exists).Number(key).Next();
}

int64_t SqliteStore::Add(int64_t parent, std::string_view name) {
  const std::string folded = FoldName(name);
  Statement::Run run(parent == 0 ? statements_->addRoot : statements_->add);
  if (parent != 0) run.Number(parent);
  run.Text(name).Text(folded).Finish();
  return database_.LastInsertId();
}

bool SqliteStore::HasSubKeys(int64_t key) {
  return Statement::Run(statements_->hasSubKeys).Number(key).Next();
}

void SqliteStore::Remove(int64_t key) { Statement::Run(statements_->remove).Number(key).Finish(); }

void SqliteStore::SetRights(int64_t key, const KeyRights& rights) {
  const std::string text = rights.list ? RightsText(*rights.list) : std::string();
  Statement::Run run(statements_->setRights);
  rights.owner ? run.Text(*rights.owner) : run.Null();
  rights.list ? run.Text(text) : run.Null();
  run.Number(key).Finish();
}

bool SqliteStore::GetValue(int64_t key, std::string_view name, RawValue& value) {
  const std::string folded = FoldedValue(key, name);
  Statement::Run run(statements_->getValue);
  if (!run.Number(key).Text(folded).Next()) return false;
  value.type = static_cast<ValueType>(run.GetNumber(0));
  value.data = run.GetBytes(1);
  return true;
}

bool SqliteStore::SetValue(int64_t key, std::string_view name, const RawValue& value) {
  const std::string folded = FoldedValue(key, name);
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

bool SqliteStore::RemoveValue(int64_t key, std::string_view name) {
  const std::string folded = FoldedValue(key, name);
  const int64_t before = database_.TotalChanges();
  Statement::Run(statements_->removeValue).Number(key).Text(folded).Finish();
  return database_.TotalChanges() != before;
}

std::vector<std::string> SqliteStore::Names(Statement& statement, int64_t key) {
  std::vector<std::string> names;
  Statement::Run run(statement);
  run.Number(key);
  while (run.Next()) names.emplace_back(run.GetBytes(0));
  return names;
}

std::vector<std::string> SqliteStore::SubKeyNames(int64_t key) {
  return Names(statements_->subKeyNames, key);
}

std::vector<std::string> SqliteStore::ValueNames(int64_t key) {
  return Names(statements_->valueNames, key);
}

int64_t SqliteStore::Version() {
  // The first number tells of other connections' changes, the second of this one's.
  Statement::Run run(statements_->dataVersion);
  run.Next();
  return (run.GetNumber(0) << 40) + database_.TotalChanges();
}

bool SqliteStore::Transact(const std::function<bool()>& change) {
  Transaction transaction(database_);
  const bool keep = change();
  if (keep) transaction.Commit();
  return keep;
}

std::shared_ptr<RegistryStore> OpenStore(const MachineFolder& folder) {
  return std::make_shared<SqliteStore>(folder.RegistryFile());
}

}  // namespace quarnel
