#include "stats/name_lookups.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "config/mdlConfigs.h"

namespace name_lookups {
namespace {

using Clock = std::chrono::steady_clock;
using platform::HostNames;
using platform::LookupResult;

// How long the calling thread waits before it lets the windows react.
constexpr std::chrono::milliseconds kPatienceOfWindows{50};

// Every thread that has not ended yet.
std::atomic<std::size_t> threads = 0;

Answer AskResolver(HostNames& resolver, const std::string& address) {
  try {
    Answer answer;
    answer.result = resolver.NameOf(address, &answer.name, &answer.error);
    return answer;
  } catch (const std::exception& failure) {
    return {.result = LookupResult::kFailed, .error = failure.what()};
  }
}

// Every lookup starts and stops the sockets library, also when the start failed.
std::optional<Answer> Ask(HostNames& resolver, const std::string& address) {
  std::optional<Answer> answer;
  if (resolver.Start()) answer = AskResolver(resolver, address);
  resolver.Stop();
  return answer;
}

// The addresses of one call and what has become of them. Shared by the caller and its threads.
class Questions : public std::enable_shared_from_this<Questions> {
 public:
  Questions(const std::vector<std::string>& addresses, bool answered,
            std::chrono::milliseconds longest_wait)
      : addresses_(addresses),
        slots_(addresses.size()),
        answered_(answered),
        longest_wait_(longest_wait) {}

  // Asks with the help of threads and returns when there is nothing left to wait for.
  std::vector<std::optional<Answer>> Run();

  // Asks for one address after the other until none is left or somebody else has taken over.
  void Work();

 private:
  struct Slot {
    std::optional<Answer> answer;
    Clock::time_point overdue;
    bool waited_for = false;
  };

  bool MoreToAsk() const { return !ended_ && next_ < slots_.size(); }
  std::optional<std::size_t> Take();
  bool HandBack(std::size_t index, std::optional<Answer> answer);
  void Note(std::size_t index);
  bool StartThread();
  void StartThreads();
  void WaitForChange(std::unique_lock<std::mutex>& lock);
  void LeaveOverdueBehind();

  const std::vector<std::string> addresses_;
  HostNames& resolver_ = platform::TheHostNames();
  std::mutex mutex_;
  std::condition_variable changed_;
  // Below the lock:
  std::vector<Slot> slots_;
  std::size_t next_ = 0;     // the first address that has not been taken
  std::size_t workers_ = 0;  // threads that are waited for
  bool answered_;            // somebody has answered
  bool ended_ = false;       // no further address is taken
  const std::chrono::milliseconds longest_wait_;
};

std::optional<std::size_t> Questions::Take() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!MoreToAsk()) return std::nullopt;
  slots_[next_].overdue = Clock::now() + longest_wait_;
  slots_[next_].waited_for = true;
  return next_++;
}

void Questions::Note(std::size_t index) {
  Slot& slot = slots_[index];
  slot.waited_for = false;
  if (!slot.answer) return;
  answered_ = answered_ || ShowsLife(addresses_[index], *slot.answer);
  if (slot.answer->result == LookupResult::kTimedOut && !answered_) ended_ = true;
}

// False when the answer came too late: another thread works in the place of the calling one.
bool Questions::HandBack(std::size_t index, std::optional<Answer> answer) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!slots_[index].waited_for) return false;
  slots_[index].answer = std::move(answer);
  Note(index);
  return true;
}

void Questions::Work() {
  while (const std::optional<std::size_t> index = Take()) {
    if (!HandBack(*index, Ask(resolver_, addresses_[*index]))) return;
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  --workers_;
  changed_.notify_one();
}

bool Questions::StartThread() {
  if (threads >= kMostThreads) return false;
  try {
    ++threads;
    std::thread([self = shared_from_this()]() mutable {
      self->Work();
      self.reset();
      --threads;
    }).detach();
  } catch (const std::system_error&) {
    --threads;
    return false;
  }
  ++workers_;
  return true;
}

// As many as there is work for.
void Questions::StartThreads() {
  const std::size_t wanted = std::min(kAtOnce, workers_ + (ended_ ? 0 : slots_.size() - next_));
  while (workers_ < wanted && StartThread()) {
  }
}

void Questions::WaitForChange(std::unique_lock<std::mutex>& lock) {
  Clock::time_point wake = Clock::now() + std::min(longest_wait_, kPatienceOfWindows);
  for (const Slot& slot : slots_) {
    if (slot.waited_for) wake = std::min(wake, slot.overdue);
  }
  changed_.wait_until(lock, wake);
  lock.unlock();
  mdlConfigs::StayResponsive();
  lock.lock();
}

void Questions::LeaveOverdueBehind() {
  const Clock::time_point now = Clock::now();
  for (std::size_t index = 0; index < next_; ++index) {
    if (!slots_[index].waited_for || now < slots_[index].overdue) continue;
    slots_[index].answer = Answer{.result = LookupResult::kTimedOut};
    Note(index);
    --workers_;
  }
}

std::vector<std::optional<Answer>> Questions::Run() {
  std::unique_lock<std::mutex> lock(mutex_);
  StartThreads();
  if (workers_ == 0 && threads == 0 && MoreToAsk()) {
    // The system gives no threads at all: one address after the other, however long it takes.
    workers_ = 1;
    lock.unlock();
    Work();
    lock.lock();
  }
  while (workers_ > 0) {
    WaitForChange(lock);
    LeaveOverdueBehind();
    StartThreads();
  }
  std::vector<std::optional<Answer>> answers;
  for (const Slot& slot : slots_) answers.push_back(slot.answer);
  return answers;
}

}  // namespace

std::vector<std::optional<Answer>> AskAll(const std::vector<std::string>& addresses, bool answered,
                                          std::chrono::milliseconds longest_wait) {
  return std::make_shared<Questions>(addresses, answered, longest_wait)->Run();
}

bool ShowsLife(const std::string& address, const Answer& answer) {
  return answer.result != LookupResult::kTimedOut && answer.result != LookupResult::kNotAddress &&
         !address.starts_with("127.");
}

}  // namespace name_lookups
