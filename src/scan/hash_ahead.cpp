#include "scan/hash_ahead.h"

#include <algorithm>
#include <chrono>
#include <iterator>

#include "base/runtime_error.h"

namespace quarnel {
namespace {

// So many jobs are submitted at most, and with so few it is time for more: early, since the one
// thread has to get its turn on a processor that the others keep busy.
constexpr size_t kMostPending = 4096;
constexpr size_t kFewPending = kMostPending / 2;

// So many are handed to the threads in one go, and so many are awaited where they end soon: each
// costs the threads an interruption.
constexpr size_t kHandedOver = 64;
constexpr size_t kAwaited = 256;

constexpr auto kPatience = std::chrono::milliseconds(5);

}  // namespace

void HashPool::Reading::Open(Place& place) {
  if (!job_->abandoned_) IgnoringErrors([&] { file_ = place.Open(*job_); });
}

std::optional<size_t> HashPool::Reading::Next(std::span<char> buffer) {
  size_t size = 0;
  const bool read = file_ && !job_->abandoned_.load(std::memory_order_relaxed) &&
                    IgnoringErrors([&] { size = reader_.Read(*file_, buffer); });
  if (read) return size;
  const std::unique_ptr<Reading> self(this);
  file_.reset();
  pool_.Finish(*job_);
  return std::nullopt;
}

void HashPool::Reading::Done(const Md5Digest& digest) {
  const std::unique_ptr<Reading> self(this);
  file_.reset();
  job_->digest_ = digest;
  job_->grew_ = reader_.Grew();
  pool_.Finish(*job_);
}

void HashPool::Finish(Job& job) {
  const bool low = unfinished_.fetch_sub(1) == kFewPending;
  job.done_.store(true);
  const Job* const awaited = awaited_.load();
  // Waking the one thread costs more than hashing a small file: only for what it waits for.
  if (awaited == nullptr || (awaited != &job && !low)) return;
  // The lock keeps the signal from falling between the waiter's look and its sleep.
  const std::scoped_lock lock(mutex_);
  jobEnded_.notify_all();
}

HashPool::HashPool(unsigned threads, Md5Level level) {
  for (unsigned i = 0; i < threads; ++i) {
    threads_.emplace_back([this, level] { Work(level); });
  }
}

// No stop tokens: where threads are built on those of Windows, waiting for one and a condition at
// once was seen to miss its signal.
HashPool::~HashPool() {
  {
    const std::scoped_lock lock(mutex_);
    ends_.store(true);
  }
  jobsCame_.notify_all();
}

void HashPool::Submit(const Jobs& jobs) {
  unfinished_.fetch_add(jobs.size());
  {
    const std::scoped_lock lock(mutex_);
    waiting_.insert(waiting_.end(), jobs.begin(), jobs.end());
    someWait_.store(true);
  }
  jobsCame_.notify_all();
}

// A few jobs at a time, and no more than this thread's share of what is left.
void HashPool::Take(Jobs& jobs) {
  if (!someWait_.load()) return;
  constexpr size_t kMost = 16;
  const std::scoped_lock lock(mutex_);
  const size_t share = (waiting_.size() + threads_.size() - 1) / threads_.size();
  const auto end = waiting_.begin() + static_cast<std::ptrdiff_t>(std::min(share, kMost));
  // The last one is handed out first.
  jobs.assign(std::make_reverse_iterator(end), std::make_reverse_iterator(waiting_.begin()));
  waiting_.erase(waiting_.begin(), end);
  someWait_.store(!waiting_.empty());
}

void HashPool::Work(Md5Level level) {
  Md5Batch batch(level);
  Jobs taken;
  Place place;
  while (!ends_) {
    {
      std::unique_lock lock(mutex_);
      jobsCame_.wait(lock, [this] { return ends_ || !waiting_.empty(); });
    }
    batch.Run([&]() -> Md5Message* {
      if (ends_) return nullptr;
      if (taken.empty()) Take(taken);
      if (taken.empty()) return nullptr;
      auto reading = std::make_unique<Reading>(*this, std::move(taken.back()));
      taken.pop_back();
      reading->Open(place);
      return reading.release();
    });
    place = {};  // by the next time something else may stand there
  }
}

std::unique_ptr<File> HashPool::Place::Open(const Job& job) {
  if (path != job.folder_) {
    folder = job.files_.OpenFolder(*job.folder_);
    path = job.folder_;
  }
  return folder->Open(job.name_);
}

bool HashPool::Wait(const Job& job, const Job& later, const std::function<bool()>& whileWaiting) {
  for (const Job* awaited = &later; !job.IsDone(); awaited = &job) {
    awaited_.store(awaited);
    if (!whileWaiting()) break;
    std::unique_lock lock(mutex_);
    if (!awaited->IsDone()) jobEnded_.wait_for(lock, kPatience);
  }
  awaited_.store(nullptr);
  return job.IsDone();
}

HashQueue::~HashQueue() {
  for (const auto& job : underWay_) job->Abandon();
}

void HashQueue::Add(std::shared_ptr<const std::string> folder, std::string name) {
  added_.push_back(std::make_shared<HashPool::Job>(files_, std::move(folder), std::move(name)));
  if (added_.size() == kHandedOver) Flush();
}

void HashQueue::Flush() {
  if (added_.empty()) return;
  pool_.Submit(added_);
  underWay_.insert(underWay_.end(), added_.begin(), added_.end());
  added_.clear();
}

bool HashQueue::Full() const { return pool_.Unfinished() + added_.size() >= kMostPending; }

bool HashQueue::RunsLow() const { return pool_.Unfinished() < kFewPending; }

std::string HashQueue::Next(const std::function<bool()>& whileWaiting) {
  const std::shared_ptr<HashPool::Job> job = underWay_.front();
  // Short jobs end close together. Sleeping until some more are done saves waking for each.
  const std::shared_ptr<HashPool::Job> later = underWay_[std::min(kAwaited, underWay_.size()) - 1];
  if (!pool_.Wait(*job, *later, whileWaiting)) return std::string(kNoHash);
  underWay_.pop_front();
  return job->Hash();
}

}  // namespace quarnel
