// Everything goes through Files, so that an archive lies on the machine like any other file: libzip
// reads and writes by the callbacks below. No exception may pass through its frames; one that is
// raised inside a callback waits in the callback's object until libzip has returned.

#include "recovery/archive.h"

#include <zip.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <utility>

#include "base/runtime_error.h"

namespace quarnel {
namespace {

constexpr char kSideMark = '|';

constexpr size_t kCopiedAtOnce = size_t{1} << 18;

struct DiscardArchive {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
using Archive = std::unique_ptr<zip_t, DiscardArchive>;

struct CloseEntry {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};

[[noreturn]] void RaiseZip(zip_error_t& error, std::string_view path) {
  const std::string text = std::string(zip_error_strerror(&error)) + ": " + std::string(path);
  const int code = zip_error_code_zip(&error);
  zip_error_fini(&error);
  throw RuntimeError(ErrorNumber::kDeviceError, text, code);
}

// What the callbacks of one archive share: the first failure that was raised in any of them.
struct Trouble {
  std::exception_ptr raised;
  void Rethrow() {
    if (raised) std::rethrow_exception(std::exchange(raised, nullptr));
  }
};

// A source of libzip's over an object with Do(command, data, length).
template <typename Object>
class Callbacks {
 public:
  explicit Callbacks(Trouble& trouble) : trouble_(trouble) { zip_error_init(&error_); }
  ~Callbacks() { zip_error_fini(&error_); }
  Callbacks(const Callbacks&) = delete;
  Callbacks& operator=(const Callbacks&) = delete;

  zip_source_t* Source() {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_function_create(&Callbacks::Call, this, &error);
    if (source == nullptr) RaiseZip(error, "archive");
    zip_error_fini(&error);
    return source;
  }

 protected:
  zip_int64_t Fail(int code, int systemCode = 0) {
    zip_error_set(&error_, code, systemCode);
    return -1;
  }
  zip_error_t& Error() { return error_; }

 private:
  static zip_int64_t Call(void* self, void* data, zip_uint64_t length, zip_source_cmd_t command) {
    auto* callbacks = static_cast<Callbacks*>(self);
    switch (command) {
      case ZIP_SOURCE_ERROR:
        return zip_error_to_data(&callbacks->error_, data, length);
      case ZIP_SOURCE_FREE:
        return 0;
      default:
        break;
    }
    try {
      return static_cast<Object*>(callbacks)->Do(command, data, length);
    } catch (...) {
      if (!callbacks->trouble_.raised) callbacks->trouble_.raised = std::current_exception();
      return callbacks->Fail(ZIP_ER_READ, EIO);
    }
  }

  Trouble& trouble_;
  zip_error_t error_{};
};

template <typename... Commands>
zip_int64_t Supported(Commands... commands) {
  return zip_source_make_command_bitmap(commands..., -1);
}

// The archive that is being written. libzip goes back to an entry's header when it knows its check
// sum, so what was written last is kept at hand.
class Sink : public Callbacks<Sink> {
 public:
  Sink(Files& files, const std::string& path, Trouble& trouble)
      : Callbacks(trouble), files_(files), path_(path) {}

  uint64_t Position() const { return position_; }

  zip_int64_t Do(zip_source_cmd_t command, void* data, zip_uint64_t length) {
    switch (command) {
      case ZIP_SOURCE_SUPPORTS:
        return ZIP_SOURCE_SUPPORTS_WRITABLE;
      case ZIP_SOURCE_BEGIN_WRITE:
        file_ = files_.Open(path_, OpenMode::kCreate);
        return 0;
      case ZIP_SOURCE_WRITE:
        Write({static_cast<const char*>(data), static_cast<size_t>(length)});
        return static_cast<zip_int64_t>(length);
      case ZIP_SOURCE_TELL_WRITE:
        return static_cast<zip_int64_t>(position_);
      case ZIP_SOURCE_SEEK_WRITE: {
        const zip_int64_t position =
            zip_source_seek_compute_offset(position_, end_, data, length, &Error());
        if (position < 0) return -1;
        position_ = static_cast<uint64_t>(position);
        return 0;
      }
      case ZIP_SOURCE_COMMIT_WRITE:
        WriteBack();
        file_->Flush();
        file_.reset();
        return 0;
      case ZIP_SOURCE_ROLLBACK_WRITE:
      case ZIP_SOURCE_REMOVE:
        file_.reset();
        return 0;
      default:
        // A new archive: nothing stands there yet.
        return Fail(ZIP_ER_READ, ENOENT);
    }
  }

 private:
  void Write(std::string_view bytes) {
    constexpr size_t kKept = size_t{1} << 20;
    if (position_ < start_ || position_ > start_ + kept_.size() || kept_.size() > kKept) {
      WriteBack();
      start_ = position_;
    }
    const auto at = static_cast<size_t>(position_ - start_);
    kept_.replace(at, std::min(bytes.size(), kept_.size() - at), bytes);
    position_ += bytes.size();
    end_ = std::max(end_, position_);
  }

  void WriteBack() {
    if (kept_.empty()) return;
    file_->Seek(start_);
    file_->Write(kept_);
    start_ += kept_.size();
    kept_.clear();
  }

  Files& files_;
  const std::string& path_;
  std::unique_ptr<File> file_;
  uint64_t position_ = 0;
  uint64_t end_ = 0;
  uint64_t start_ = 0;  // where kept_ belongs
  std::string kept_;
};

// A file that goes into the archive. Its size and digest are those of the bytes that went in.
class Input : public Callbacks<Input> {
 public:
  Input(Files& files, const Sink& sink, const DirectoryEntry& facts, StoredFile file,
        Trouble& trouble)
      : Callbacks(trouble), stored(std::move(file)), files_(files), sink_(sink), facts_(facts) {}

  StoredFile stored;
  std::string failure;

  zip_int64_t Do(zip_source_cmd_t command, void* data, zip_uint64_t length) {
    switch (command) {
      case ZIP_SOURCE_SUPPORTS:
        return Supported(ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE, ZIP_SOURCE_STAT,
                         ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE);
      case ZIP_SOURCE_STAT: {
        auto* facts = static_cast<zip_stat_t*>(data);
        zip_stat_init(facts);
        facts->valid = ZIP_STAT_SIZE | ZIP_STAT_MTIME;
        facts->size = facts_.size;
        facts->mtime = static_cast<time_t>(
            std::chrono::floor<std::chrono::seconds>(facts_.modified).time_since_epoch().count());
        return sizeof(zip_stat_t);
      }
      case ZIP_SOURCE_OPEN:
        return Guarded([&] {
          file_ = files_.Open(stored.source, OpenMode::kRead);
          begun_ = false;
          return zip_int64_t{0};
        });
      case ZIP_SOURCE_READ:
        if (!std::exchange(begun_, true)) {
          stored.offset = sink_.Position();
          stored.size = 0;
          hash_ = Sha256();
        }
        return Guarded([&] {
          const size_t count = file_->Read({static_cast<char*>(data), static_cast<size_t>(length)});
          hash_.Update({static_cast<const char*>(data), count});
          stored.size += count;
          return static_cast<zip_int64_t>(count);
        });
      case ZIP_SOURCE_CLOSE:
        file_.reset();
        stored.digest = hash_.Finish();
        return 0;
      default:
        return Fail(ZIP_ER_OPNOTSUPP);
    }
  }

 private:
  // A file that cannot be read costs its own place in the archive, and is no trouble beyond that.
  template <typename Action>
  zip_int64_t Guarded(Action&& action) {
    try {
      return action();
    } catch (const RuntimeError& error) {
      failure = error.Description();
      return Fail(ZIP_ER_READ, EIO);
    }
  }

  Files& files_;
  const Sink& sink_;
  const DirectoryEntry& facts_;
  std::unique_ptr<File> file_;
  bool begun_ = false;
  Sha256 hash_;
};

// An archive that is read.
class Reader : public Callbacks<Reader> {
 public:
  Reader(std::unique_ptr<File> file, Trouble& trouble)
      : Callbacks(trouble), file_(std::move(file)), size_(file_->Size()) {}

  zip_int64_t Do(zip_source_cmd_t command, void* data, zip_uint64_t length) {
    switch (command) {
      case ZIP_SOURCE_SUPPORTS:
        return ZIP_SOURCE_SUPPORTS_SEEKABLE;
      case ZIP_SOURCE_OPEN:
        position_ = 0;
        return 0;
      case ZIP_SOURCE_CLOSE:
        return 0;
      case ZIP_SOURCE_STAT: {
        auto* facts = static_cast<zip_stat_t*>(data);
        zip_stat_init(facts);
        facts->valid = ZIP_STAT_SIZE;
        facts->size = size_;
        return sizeof(zip_stat_t);
      }
      case ZIP_SOURCE_READ: {
        file_->Seek(position_);
        const size_t count = file_->Read({static_cast<char*>(data), static_cast<size_t>(length)});
        position_ += count;
        return static_cast<zip_int64_t>(count);
      }
      case ZIP_SOURCE_TELL:
        return static_cast<zip_int64_t>(position_);
      case ZIP_SOURCE_SEEK: {
        const zip_int64_t position =
            zip_source_seek_compute_offset(position_, size_, data, length, &Error());
        if (position < 0) return -1;
        position_ = static_cast<uint64_t>(position);
        return 0;
      }
      default:
        return Fail(ZIP_ER_OPNOTSUPP);
    }
  }

 private:
  std::unique_ptr<File> file_;
  uint64_t size_;
  uint64_t position_ = 0;
};

Archive OpenArchive(zip_source_t* source, int flags, std::string_view path) {
  zip_error_t error;
  zip_error_init(&error);
  zip_t* archive = zip_open_from_source(source, flags, &error);
  if (archive == nullptr) {
    zip_source_free(source);
    RaiseZip(error, path);
  }
  zip_error_fini(&error);
  return Archive(archive);
}

class ZipEntry : public ArchiveEntry {
 public:
  ZipEntry(zip_t* archive, zip_uint64_t index, Trouble& trouble)
      : archive_(archive), index_(index), trouble_(trouble) {
    if (const char* name = zip_get_name(archive, index, ZIP_FL_ENC_RAW)) name_ = name;
  }
  const std::string& Name() const override { return name_; }

  void Read(const std::function<void(std::string_view)>& take) override {
    const std::unique_ptr<zip_file_t, CloseEntry> file(zip_fopen_index(archive_, index_, 0));
    if (!file) Raise(zip_get_error(archive_));
    const auto buffer = std::make_unique<std::array<char, kCopiedAtOnce>>();
    for (;;) {
      const zip_int64_t count = zip_fread(file.get(), buffer->data(), buffer->size());
      if (count < 0) Raise(zip_file_get_error(file.get()));
      if (count == 0) return;
      take({buffer->data(), static_cast<size_t>(count)});
    }
  }

 private:
  [[noreturn]] void Raise(zip_error_t* error) {
    trouble_.Rethrow();
    throw RuntimeError(ErrorNumber::kDeviceError, zip_error_strerror(error),
                       zip_error_code_zip(error));
  }

  zip_t* archive_;
  zip_uint64_t index_;
  Trouble& trouble_;
  std::string name_;
};

}  // namespace

std::string EntryName(std::string_view path) {
  if (path.size() >= 2 && path[1] == ':') path.remove_prefix(2);
  path.remove_prefix(std::min(path.find_first_not_of("\\/"), path.size()));
  std::string entry(path);
  std::replace(entry.begin(), entry.end(), '\\', '/');
  return entry;
}

std::string SideEntryName(std::string_view path) {
  const bool hasDrive = path.size() >= 2 && path[1] == ':';
  return kSideMark + std::string(path.substr(0, hasDrive ? 1 : 0)) + "/" + EntryName(path);
}

bool IsSideEntry(std::string_view entry) { return entry.starts_with(kSideMark); }

std::string SideFilePath(std::string_view entry) {
  entry.remove_prefix(std::min<size_t>(1, entry.size()));
  const size_t slash = entry.find('/');
  std::string path(entry.substr(0, slash));
  if (!path.empty()) path += ':';
  if (slash != std::string_view::npos) path += entry.substr(slash);
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

ArchiveWriter::ArchiveWriter(Files& files, std::string path, Handler pump)
    : files_(files),
      path_(std::move(path)),
      temporary_(TemporaryName(path_)),
      pump_(std::move(pump)) {}

bool ArchiveWriter::Add(std::string source, std::string entry, const DirectoryEntry& facts) {
  if (!names_.insert(entry).second) return false;
  pending_.push_back({std::move(source), std::move(entry), facts, {}});
  return true;
}

ArchiveWriter::Result ArchiveWriter::Finish() {
  Result result;
  try {
    // A file that fails costs one more turn without it.
    while (!WriteAll(result)) {
    }
    files_.ReplaceFile(temporary_, path_);
  } catch (const RuntimeError& error) {
    IgnoringErrors([&] { files_.Delete(temporary_); });
    throw ToldOfTarget(error, path_);
  } catch (...) {
    IgnoringErrors([&] { files_.Delete(temporary_); });
    throw;
  }
  for (const Pending& file : pending_) {
    if (!file.failure.empty()) result.unstored.push_back({file.source, file.failure});
  }
  return result;
}

bool ArchiveWriter::WriteAll(Result& result) {
  Trouble trouble;
  Sink sink(files_, temporary_, trouble);
  std::deque<Input> inputs;
  Archive archive = OpenArchive(sink.Source(), ZIP_CREATE | ZIP_TRUNCATE, path_);
  const auto raise = [&] {
    trouble.Rethrow();
    throw RuntimeError(ErrorNumber::kDeviceError, zip_strerror(archive.get()));
  };
  std::vector<Pending*> taken;
  for (Pending& file : pending_) {
    if (!file.failure.empty()) continue;
    Input& input = inputs.emplace_back(files_, sink, file.facts,
                                       StoredFile{file.source, file.entry, 0, 0, {}}, trouble);
    zip_source_t* source = input.Source();
    // A name that is no UTF-8 is stored as the bytes that it is.
    zip_int64_t index = zip_file_add(archive.get(), file.entry.c_str(), source, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
      index = zip_file_add(archive.get(), file.entry.c_str(), source, ZIP_FL_ENC_CP437);
    }
    if (index < 0) {
      zip_source_free(source);
      raise();
    }
    zip_set_file_compression(archive.get(), static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0);
    taken.push_back(&file);
  }
  if (taken.empty()) {
    WriteEmpty();
    return true;
  }
  struct Pump {
    const Handler& run;
    Trouble& trouble;
  } pump{pump_, trouble};
  constexpr double kHundredth = 0.01;
  zip_register_progress_callback_with_state(
      archive.get(), kHundredth,
      [](zip_t*, double, void* state) {
        auto* self = static_cast<Pump*>(state);
        if (self->trouble.raised) return;
        try {
          if (self->run) self->run();
        } catch (...) {
          self->trouble.raised = std::current_exception();
        }
      },
      nullptr, &pump);
  zip_register_cancel_callback_with_state(
      archive.get(),
      [](zip_t*, void* state) { return static_cast<Pump*>(state)->trouble.raised ? 1 : 0; },
      nullptr, &pump);
  if (zip_close(archive.get()) == 0) {
    // Closing has freed it.
    static_cast<void>(archive.release());
    for (Input& input : inputs) result.stored.push_back(std::move(input.stored));
    return true;
  }
  bool skipped = false;
  for (size_t i = 0; i < inputs.size(); ++i) {
    if (inputs[i].failure.empty()) continue;
    taken[i]->failure = inputs[i].failure;
    skipped = true;
  }
  if (!skipped || trouble.raised) raise();
  return false;
}

// libzip writes no archive without an entry, which consists of the end record alone.
void ArchiveWriter::WriteEmpty() {
  std::string bytes = "PK\5\6";
  bytes.resize(22);
  const std::unique_ptr<File> file = files_.Open(temporary_, OpenMode::kCreate);
  file->Write(bytes);
  file->Flush();
}

void ReadArchive(Files& files, std::string_view path,
                 const std::function<void(ArchiveEntry& entry)>& visit) {
  Trouble trouble;
  Reader reader(files.Open(path, OpenMode::kRead), trouble);
  const Archive archive = [&] {
    try {
      return OpenArchive(reader.Source(), ZIP_RDONLY, path);
    } catch (const RuntimeError&) {
      trouble.Rethrow();
      throw;
    }
  }();
  const zip_int64_t count = zip_get_num_entries(archive.get(), 0);
  for (zip_int64_t i = 0; i < count; ++i) {
    ZipEntry entry(archive.get(), static_cast<zip_uint64_t>(i), trouble);
    visit(entry);
  }
}

}  // namespace quarnel
