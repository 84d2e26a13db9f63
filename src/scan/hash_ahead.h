#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/files.h"
#include "signatures/md5_batch.h"
#include "signatures/steady_reader.h"

namespace quarnel {

// Threads that open and hash files. They touch nothing else.
class HashPool {
 public:
  // A file on its way through the pool. Its hash may be read once it is done. Tens of thousands may
  // wait for their turn, so what only the work on it needs is not here.
  class Job {
   public:
    Job(Files& files, std::shared_ptr<const std::string> folder, std::string name)
        : files_(files), folder_(std::move(folder)), name_(std::move(name)) {}
    // Its folder's path with a backslash at its end, and its name there.
    const std::string& Folder() const { return *folder_; }
    const std::string& Name() const { return name_; }
    bool IsDone() const { return done_.load(std::memory_order_acquire); }
    // 32 digits, or kNoHash for a file that could not be read to its end.
    std::string Hash() const { return digest_ ? HexText(*digest_) : std::string(kNoHash); }
    // Whether the file became larger meanwhile; its hash is that of what it held at first.
    bool Grew() const { return grew_; }
    // Ends the work on it soon.
    void Abandon() { abandoned_.store(true, std::memory_order_relaxed); }

   private:
    friend class HashPool;

    Files& files_;
    const std::shared_ptr<const std::string> folder_;
    const std::string name_;
    std::optional<Md5Digest> digest_;
    bool grew_ = false;
    std::atomic<bool> done_ = false;
    std::atomic<bool> abandoned_ = false;
  };
  using Jobs = std::vector<std::shared_ptr<Job>>;

  explicit HashPool(unsigned threads, Md5Level level = BestMd5Level());
  // Jobs that are not done then never will be.
  ~HashPool();
  HashPool(const HashPool&) = delete;
  HashPool& operator=(const HashPool&) = delete;

  void Submit(const Jobs& jobs);
  // Waits until a job is done, calling `whileWaiting` every few milliseconds and whenever the jobs
  // run low, so that it can submit more; false when that answered false first. At first, and for a
  // few milliseconds at most, it waits until `later` is done too.
  bool Wait(const Job& job, const Job& later, const std::function<bool()>& whileWaiting);
  // The jobs that were submitted and are not done.
  size_t Unfinished() const { return unfinished_.load(std::memory_order_relaxed); }

 private:
  // The folder whose files a thread is opening.
  struct Place {
    std::shared_ptr<const std::string> path;
    std::unique_ptr<ListedFolder> folder;

    std::unique_ptr<File> Open(const Job& job);
  };

  // A job that a thread works on. It destroys itself in the end.
  class Reading : public Md5Message {
   public:
    Reading(HashPool& pool, std::shared_ptr<Job> job) : pool_(pool), job_(std::move(job)) {}
    void Open(Place& place);
    std::optional<size_t> Next(std::span<char> buffer) override;
    void Done(const Md5Digest& digest) override;

   private:
    HashPool& pool_;
    const std::shared_ptr<Job> job_;
    std::unique_ptr<File> file_;  // null when it could not be opened
    SteadyReader reader_;
  };

  void Finish(Job& job);
  void Work(Md5Level level);
  void Take(Jobs& jobs);

  std::mutex mutex_;
  std::condition_variable jobsCame_;  // or the end
  std::condition_variable jobEnded_;
  std::deque<std::shared_ptr<Job>> waiting_;
  std::atomic<bool> someWait_ = false;  // whether `waiting_` has jobs, for a look without the lock
  std::atomic<bool> ends_ = false;
  std::atomic<size_t> unfinished_ = 0;
  std::atomic<const Job*> awaited_ = nullptr;
  std::vector<std::jthread> threads_;
};

// Hashes in the order in which files are added.
class HashQueue {
 public:
  HashQueue(HashPool& pool, Files& files) : pool_(pool), files_(files) {}
  ~HashQueue();
  HashQueue(const HashQueue&) = delete;
  HashQueue& operator=(const HashQueue&) = delete;

  // A file to be hashed, by the folder's path with a backslash at its end and the name that a
  // listing gave. It is started by the next Flush at the latest. Files of one folder share the
  // object that holds its path.
  void Add(std::shared_ptr<const std::string> folder, std::string name);
  void Flush();
  // Whether enough is under way, and whether more should be added before the next hash is taken.
  // What is hashed and waits for its turn does not count.
  bool Full() const;
  bool RunsLow() const;
  // The file that was added first of those not yet taken; there must be one.
  std::shared_ptr<const HashPool::Job> First() const { return underWay_.front(); }
  // Takes that file and gives its hash. kNoHash when it could not be read, and when `whileWaiting`
  // answered false.
  std::string Next(const std::function<bool()>& whileWaiting);

 private:
  HashPool& pool_;
  Files& files_;
  HashPool::Jobs added_;
  std::deque<std::shared_ptr<HashPool::Job>> underWay_;
};

}  // namespace quarnel
