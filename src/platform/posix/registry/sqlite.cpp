#include "platform/posix/registry/sqlite.h"

#include "base/hex.h"
#include "base/runtime_error.h"

namespace quarnel {
namespace {

ErrorNumber NumberOf(int code) {
  switch (code & 0xFF) {
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return ErrorNumber::kPermissionDenied;
    case SQLITE_FULL:
      return ErrorNumber::kDiskFull;
    case SQLITE_CANTOPEN:
      return ErrorNumber::kPathNotFound;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return ErrorNumber::kInvalidCall;
    default:
      return ErrorNumber::kDeviceError;
  }
}

std::string UriOf(std::string_view path) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-";
  std::string uri = "file:";
  for (const char c : path) {
    if (kPlain.find(c) != std::string_view::npos) {
      uri += c;
    } else {
      uri += "%" + HexNumber(static_cast<unsigned char>(c), 2);
    }
  }
  return uri;
}

// A pointer to no bytes would be bound as NULL.
const char* NotNull(std::string_view bytes) { return bytes.empty() ? "" : bytes.data(); }

}  // namespace

Database::Database(const std::string& path, Access access) : path_(path) {
  sqlite3* handle = nullptr;
  const bool writes = access == Access::kWrite;
  const int mode =
      writes ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
  const std::string name =
      writes ? path : UriOf(path) + (access == Access::kReadAlone ? "?immutable=1" : "");
  const int code = sqlite3_open_v2(name.c_str(), &handle,
                                   mode | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  handle_.reset(handle);
  if (handle == nullptr) throw RuntimeError(ErrorNumber::kDeviceError, path, code);
  if (code != SQLITE_OK) Raise();
  constexpr int kPatience = 3000;  // milliseconds
  sqlite3_busy_timeout(handle, kPatience);
}

void Database::Execute(const char* sql) {
  if (sqlite3_exec(Handle(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) Raise();
}

void Database::Raise() const {
  const int code = sqlite3_extended_errcode(Handle());
  throw RuntimeError(NumberOf(code), path_ + ": " + sqlite3_errmsg(Handle()), code);
}

Statement::Statement(Database& database, std::string_view sql) : database_(database) {
  sqlite3_stmt* handle = nullptr;
  const int code = sqlite3_prepare_v3(database.Handle(), sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &handle, nullptr);
  handle_.reset(handle);
  if (code != SQLITE_OK) database.Raise();
}

void Statement::Run::Check(int code) const {
  if (code != SQLITE_OK) statement_.database_.Raise();
}

Statement::Run& Statement::Run::Text(std::string_view text) {
  Check(sqlite3_bind_text64(statement_.handle_.get(), ++parameter_, NotNull(text), text.size(),
                            SQLITE_STATIC, SQLITE_UTF8));
  return *this;
}

Statement::Run& Statement::Run::Blob(std::string_view bytes) {
  Check(sqlite3_bind_blob64(statement_.handle_.get(), ++parameter_, NotNull(bytes), bytes.size(),
                            SQLITE_STATIC));
  return *this;
}

Statement::Run& Statement::Run::Number(int64_t number) {
  Check(sqlite3_bind_int64(statement_.handle_.get(), ++parameter_, number));
  return *this;
}

Statement::Run& Statement::Run::Null() {
  Check(sqlite3_bind_null(statement_.handle_.get(), ++parameter_));
  return *this;
}

bool Statement::Run::Next() {
  const int code = sqlite3_step(statement_.handle_.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) statement_.database_.Raise();
  return code == SQLITE_ROW;
}

bool Statement::Run::IsNull(int column) const {
  return sqlite3_column_type(statement_.handle_.get(), column) == SQLITE_NULL;
}

int64_t Statement::Run::GetNumber(int column) const {
  return sqlite3_column_int64(statement_.handle_.get(), column);
}

std::string_view Statement::Run::GetBytes(int column) const {
  // First the pointer, then the length: the call for the pointer may convert the value.
  const void* bytes = sqlite3_column_blob(statement_.handle_.get(), column);
  const int length = sqlite3_column_bytes(statement_.handle_.get(), column);
  if (bytes == nullptr) return {};
  return {static_cast<const char*>(bytes), static_cast<size_t>(length)};
}

Transaction::~Transaction() {
  if (open_) sqlite3_exec(database_.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::Commit() {
  database_.Execute("COMMIT");
  open_ = false;
}

}  // namespace quarnel
