#include "scan/hash_ahead.h"

#include <chrono>

#include "base/runtime_error.h"

namespace quarnel {
namespace {

// Every file under way is an open descriptor; so many keep the lanes of all threads filled.
constexpr size_t kMostPending = 256;

constexpr auto kPatience = std::chrono::milliseconds(5);

}  // namespace

std::optional<std::string_view> HashPool::Job::Next(std::span<char> buffer) {
  size_t size = 0;
  const bool read = file_ && !abandoned_.load(std::memory_order_relaxed) &&
                    IgnoringErrors([&] { size = file_->Read(buffer); });
  if (read) return std::string_view(buffer.data(), size);
  Finish();
  return std::nullopt;
}

void HashPool::Job::Done(const Md5Digest& digest) {
  hash_ = HexText(digest);
  Finish();
}

void HashPool::Job::Finish() {
  file_.reset();
  done_.store(true);
  if (!pool_.someoneWaits_.load()) return;
  // The lock keeps the signal from falling between the waiter's look and its sleep.
  const std::scoped_lock lock(pool_.mutex_);
  pool_.jobEnded_.notify_all();
}

HashPool::HashPool(unsigned threads, Md5Level level) {
  for (unsigned i = 0; i < threads; ++i) {
    threads_.emplace_back([this, level](const std::stop_token& stop) { Work(stop, level); });
  }
}

void HashPool::Submit(const Jobs& jobs) {
  {
    const std::scoped_lock lock(mutex_);
    waiting_.insert(waiting_.end(), jobs.begin(), jobs.end());
  }
  jobsCame_.notify_all();
}

std::shared_ptr<HashPool::Job> HashPool::Take() {
  const std::scoped_lock lock(mutex_);
  if (waiting_.empty()) return nullptr;
  std::shared_ptr<Job> job = std::move(waiting_.front());
  waiting_.pop_front();
  return job;
}

void HashPool::Work(const std::stop_token& stop, Md5Level level) {
  Md5Batch batch(level);
  while (!stop.stop_requested()) {
    {
      std::unique_lock lock(mutex_);
      if (!jobsCame_.wait(lock, stop, [this] { return !waiting_.empty(); })) return;
    }
    // The jobs of a run are kept until its end: the batch refers to them.
    Jobs taken;
    batch.Run([&]() -> Md5Message* {
      std::shared_ptr<Job> job = stop.stop_requested() ? nullptr : Take();
      if (!job) return nullptr;
      taken.push_back(std::move(job));
      return taken.back().get();
    });
  }
}

bool HashPool::Wait(const Job& job, const std::function<bool()>& whileWaiting) {
  if (job.IsDone()) return true;
  std::unique_lock lock(mutex_);
  someoneWaits_.store(true);
  bool goOn = true;
  while (goOn && !jobEnded_.wait_for(lock, kPatience, [&] { return job.IsDone(); })) {
    lock.unlock();
    goOn = whileWaiting();
    lock.lock();
  }
  someoneWaits_.store(false);
  return job.IsDone();
}

HashQueue::~HashQueue() {
  for (const auto& job : underWay_) job->Abandon();
}

void HashQueue::Add(std::unique_ptr<File> file) {
  added_.push_back(std::make_shared<HashPool::Job>(pool_, std::move(file)));
}

void HashQueue::Flush() {
  if (added_.empty()) return;
  pool_.Submit(added_);
  underWay_.insert(underWay_.end(), added_.begin(), added_.end());
  added_.clear();
}

bool HashQueue::Full() const { return underWay_.size() + added_.size() >= kMostPending; }

bool HashQueue::RunsLow() const { return underWay_.size() < kMostPending / 2; }

std::string HashQueue::Next(const std::function<bool()>& whileWaiting) {
  const std::shared_ptr<HashPool::Job> job = underWay_.front();
  if (!pool_.Wait(*job, whileWaiting)) return std::string(kNoHash);
  underWay_.pop_front();
  return job->Hash();
}

}  // namespace quarnel
