#include "platform/posix/registry/store_conversion.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "platform/names.h"

namespace quarnel {
namespace {

// A key or a value that may have to be folded anew.
struct Row {
  int64_t id = 0;
  int64_t holder = 0;  // the key in which it stands
  std::string name;
  std::string folded;  // the whole path of a key
};

// Rows of the columns id, holder, name, folded, in the order of their making.
std::vector<Row> ReadRows(Database& database, std::string_view sql) {
  std::vector<Row> rows;
  Statement statement(database, sql);
  Statement::Run run(statement);
  while (run.Next()) {
    if (IsAscii(run.GetBytes(3))) continue;
    rows.push_back({run.GetNumber(0), run.GetNumber(1), std::string(run.GetBytes(2)),
                    std::string(run.GetBytes(3))});
  }
  return rows;
}

bool ComesFirst(const Row& row, const Row& other, std::string_view folded) {
  if (ToUpper(row.name) == folded || ToUpper(other.name) == folded) {
    return ToUpper(row.name) == folded;
  }
  return row.name < other.name;
}

// The folded name of each row; those of twins are noted.
std::map<int64_t, std::string> FoldedNames(Database& database, std::string_view kind,
                                           const std::vector<Row>& rows) {
  std::map<std::pair<int64_t, std::string>, const Row*> owners;
  for (const Row& row : rows) {
    const std::string folded = FoldName(row.name);
    const Row*& owner = owners[{row.holder, folded}];
    if (owner == nullptr || ComesFirst(row, *owner, folded)) owner = &row;
  }
  Statement note(database, "INSERT INTO twins(kind, id) VALUES(?, ?)");
  std::map<int64_t, std::string> names;
  for (const Row& row : rows) {
    std::string folded = FoldName(row.name);
    if (owners[{row.holder, folded}] != &row) {
      Statement::Run(note).Text(kind).Number(row.id).Finish();
      folded = ToUpper(row.name);
    }
    names.emplace(row.id, std::move(folded));
  }
  return names;
}

// The whole path of each key.
std::map<int64_t, std::string> PathsOf(const std::vector<Row>& keys,
                                       const std::map<int64_t, std::string>& names) {
  std::map<int64_t, std::string> paths;
  for (const Row& key : keys) {
    // A key is made after the one that holds it. What is not among these stays as it is.
    const auto above = paths.find(key.holder);
    const std::string path = above != paths.end()
                                 ? above->second + '\\'
                                 : key.folded.substr(0, key.folded.rfind('\\') + 1);
    paths.emplace(key.id, path + names.at(key.id));
  }
  return paths;
}

// In a damaged store a name may be taken: such a row stays as it is, which loses nothing.
void Store(Database& database, std::string_view sql, const std::map<int64_t, std::string>& texts) {
  Statement statement(database, sql);
  for (const auto& [id, text] : texts) Statement::Run(statement).Text(text).Number(id).Finish();
}

}  // namespace

void FoldNamesWhole(Database& database) {
  database.Execute("CREATE TABLE twins(kind TEXT NOT NULL, id INTEGER NOT NULL)");
  const std::vector<Row> keys =
      ReadRows(database, "SELECT id, parent, name, path FROM keys ORDER BY id");
  Store(database, "UPDATE OR IGNORE keys SET path = ? WHERE id = ?",
        PathsOf(keys, FoldedNames(database, "key", keys)));
  const std::vector<Row> values =
      ReadRows(database, "SELECT id, key, name, folded FROM key_values ORDER BY id");
  Store(database, "UPDATE OR IGNORE key_values SET folded = ? WHERE id = ?",
        FoldedNames(database, "value", values));
  database.Execute("PRAGMA user_version = 2");
}

}  // namespace quarnel
