#include "survey/pool.h"

#include "common/memory.h"
#include "common/parallel.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <exception>
#include <mutex>
#include <thread>

namespace kova::survey {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds PROGRESS_INTERVAL(100);
constexpr const char *CLEAR_LINE = "\r\x1b[K";

/// What the workers share.
struct Shared {
  std::vector<Input> inputs; ///< each is taken by one worker
  const Run &run;
  std::atomic<std::size_t> next = 0;
  std::atomic<std::uint64_t> files_done = 0, bytes_done = 0, bad = 0;
};

void auditOne(Shared &shared, Input &&input, Workspace &workspace) {
  const std::uint64_t bytes = input.bytes; // as they were added up
  FileResult result = audit(std::move(input), shared.run.asked, workspace);
  shared.bad += result.verdict != Verdict::ok;
  shared.bytes_done += bytes;
  ++shared.files_done;
  shared.run.take(std::move(result));
}

void work(Shared &shared) {
  Workspace workspace;
  for (std::size_t i = shared.next++; i < shared.inputs.size(); i = shared.next++)
    auditOne(shared, std::move(shared.inputs[i]), workspace);
}

/// Shows how far the workers are until it is asked to stop.
/// @param progress with the totals
void watch(const std::stop_token &stop, const Shared &shared, Progress progress) {
  const auto begin = Clock::now();
  std::mutex mutex;
  std::unique_lock lock(mutex);
  std::condition_variable_any done;
  while (!done.wait_for(lock, stop, PROGRESS_INTERVAL, [&] { return stop.stop_requested(); })) {
    progress.files_done = shared.files_done;
    progress.bytes_done = shared.bytes_done;
    progress.bad = shared.bad;
    const std::chrono::duration<double> seconds = Clock::now() - begin;
    std::fprintf(stderr, "%s%s", CLEAR_LINE, progressText(progress, seconds.count()).c_str());
    std::fflush(stderr);
  }
  std::fputs(CLEAR_LINE, stderr);
}

} // namespace

void auditAll(std::vector<Input> inputs, const Run &run) {
  Shared shared{std::move(inputs), run};
  Progress totals{.files = shared.inputs.size()};
  std::uint64_t most_bytes = 0;
  for (const Input &input : shared.inputs) {
    totals.bytes += input.bytes;
    most_bytes = std::max(most_bytes, input.bytes);
  }
  const std::size_t workers = std::min<std::size_t>(run.workers, shared.inputs.size());
  reserveMemory(most_bytes, workers);
  std::jthread watcher; // stops when it is destroyed
  try {
    if (run.show_progress)
      watcher = std::jthread([&](const std::stop_token &stop) { watch(stop, shared, totals); });
  } catch (const std::exception &) { // no thread for it: the progress is not shown
  }
  inParallel(workers, [&] { work(shared); });
}

} // namespace kova::survey
