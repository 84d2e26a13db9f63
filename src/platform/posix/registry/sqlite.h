#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

// The little of SQLite that the registry store needs. Every failure is a RuntimeError with SQLite's
// own text and code: kPermissionDenied when another program holds the database or it is read-only,
// kDiskFull, kPathNotFound when it cannot be opened, kInvalidCall for a file that is no database or
// is damaged, else kDeviceError.
namespace quarnel {

class Database {
 public:
  // What may do what with the file. kReadAlone is for one that nobody changes meanwhile: it needs
  // no right to write beside the file, which reading otherwise does.
  enum class Access { kWrite, kRead, kReadAlone };
  explicit Database(const std::string& path, Access access = Access::kWrite);

  // Runs statements that give no rows.
  void Execute(const char* sql);
  int64_t LastInsertId() const { return sqlite3_last_insert_rowid(handle_.get()); }
  // The rows that this connection changed so far.
  int64_t TotalChanges() const { return sqlite3_total_changes64(handle_.get()); }
  sqlite3* Handle() const { return handle_.get(); }
  [[noreturn]] void Raise() const;

 private:
  struct Close {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
  };
  std::string path_;
  std::unique_ptr<sqlite3, Close> handle_;
};

// A statement that is prepared once and run often.
class Statement {
 public:
  Statement(Database& database, std::string_view sql);

  // One run of the statement: parameters in their order, then rows. Views that were bound or read
  // hold until the run ends, which is with its destruction.
  class Run {
   public:
    explicit Run(Statement& statement) : statement_(statement) {}
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() { sqlite3_reset(statement_.handle_.get()); }

    Run& Text(std::string_view text);
    Run& Blob(std::string_view bytes);
    Run& Number(int64_t number);
    Run& Null();
    // Goes to the next row; false behind the last.
    bool Next();
    // Runs a statement that gives no row.
    void Finish() { Next(); }

    bool IsNull(int column) const;
    int64_t GetNumber(int column) const;
    std::string_view GetBytes(int column) const;

   private:
    void Check(int code) const;
    Statement& statement_;
    int parameter_ = 0;
  };

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
  };
  Database& database_;
  std::unique_ptr<sqlite3_stmt, Finalize> handle_;
};

// Several changes as one; taken back unless Commit was reached.
class Transaction {
 public:
  explicit Transaction(Database& database) : database_(database) {
    database_.Execute("BEGIN IMMEDIATE");
  }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction();
  void Commit();

 private:
  Database& database_;
  bool open_ = true;
};

}  // namespace quarnel
