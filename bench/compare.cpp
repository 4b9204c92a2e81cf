/// Compares whole runs of the program with its slow twin, which prints every line with one fprintf, with `cat`, and
/// with the least that such a program has to do.
///
///     compare FAST SLOW FLOOR [folder]
///
/// Makes the large files in `folder` (which should be on tmpfs; /dev/shm by default), checks that both programs write
/// the same bytes, then times them and `cat` of the same text in turns. Each run writes into a new file in the folder,
/// so that all of them have the same cost of writing; against FLOOR it is processor time, with output to /dev/null.
/// Prints ratios of medians. Exit status 1 where the outputs differ or a run fails.

#include "bench/large.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int ROUNDS = 9;
constexpr int SLOW_ROUNDS = 3;

struct Run {
  double seconds = 0;
  double processor_seconds = 0; ///< of the process, in user mode and in the system
  double peak_bytes = 0;
};

double secondsOf(const timeval &time) {
  return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

/// Runs `program argument [second]` with standard output into `output`.
Run run(const char *program, const std::string &argument, const char *output, const char *second = nullptr) {
  const auto begin = std::chrono::steady_clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    const int to = ::open(output, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(to, STDOUT_FILENO);
    ::execlp(program, program, argument.c_str(), second, static_cast<char *>(nullptr));
    ::_exit(127);
  }
  int status = 0;
  rusage usage{};
  if (child < 0 || ::wait4(child, &status, 0, &usage) != child || status != 0) {
    std::fprintf(stderr, "%s %s failed\n", program, argument.c_str());
    std::exit(1);
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  return {seconds.count(), secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
          static_cast<double>(usage.ru_maxrss) * 1024};
}

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
  return values[values.size() / 2];
}

struct Files {
  std::string scene, fast_text, slow_text;
  std::string sink; ///< where the runs that are timed write
};

/// The files are made and compared in a process of their own: what a process has held before it starts another one
/// counts among the other's peak memory.
template <class Work> int apart(Work work) {
  const pid_t child = ::fork();
  if (child == 0)
    ::_exit(work() ? 0 : 1);
  int status = 0;
  return child > 0 && ::waitpid(child, &status, 0) == child && status == 0;
}

bool makeScene(const kova::bench::Workload &workload, const std::string &path) {
  const std::vector<unsigned char> scene = workload.make();
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char *>(scene.data()), static_cast<std::streamsize>(scene.size()));
  file.close();
  return !file.fail();
}

bool sameText(const Files &files) {
  std::ifstream fast(files.fast_text, std::ios::binary);
  std::ifstream slow(files.slow_text, std::ios::binary);
  using Bytes = std::istreambuf_iterator<char>;
  return fast.peek() != EOF && std::equal(Bytes(fast), Bytes(), Bytes(slow), Bytes());
}

double sizeOf(const std::string &path) { return static_cast<double>(std::ifstream(path, std::ios::ate).tellg()); }

/// Runs `program argument` into the sink, which is a new file for each run: to free the pages of the old one would take
/// part of the time.
Run runIntoSink(const char *program, const std::string &argument, const Files &files) {
  ::unlink(files.sink.c_str());
  return run(program, argument, files.sink.c_str());
}

/// The programs that are compared.
struct Programs {
  const char *fast;
  const char *slow;
  const char *floor;
};

/// @return the processor time of the fast program in units of that of the floor program, both writing to /dev/null.
double aboveFloor(const Programs &programs, const Files &files, double text_bytes) {
  const std::string text_size = std::to_string(static_cast<std::uint64_t>(text_bytes));
  std::vector<double> fast_seconds, floor_seconds;
  for (int round = 0; round < ROUNDS; ++round) {
    fast_seconds.push_back(run(programs.fast, files.scene, "/dev/null").processor_seconds);
    floor_seconds.push_back(run(programs.floor, files.scene, "/dev/null", text_size.c_str()).processor_seconds);
  }
  return median(fast_seconds) / median(floor_seconds);
}

void measure(const kova::bench::Workload &workload, const Programs &programs, const Files &files, double scene_bytes,
             double text_bytes) {
  std::vector<double> fast_seconds, slow_seconds, cat_seconds, peak;
  for (int round = 0; round < ROUNDS; ++round) {
    const Run own = runIntoSink(programs.fast, files.scene, files);
    fast_seconds.push_back(own.seconds);
    peak.push_back(own.peak_bytes);
    cat_seconds.push_back(runIntoSink("cat", files.fast_text, files).seconds);
    if (round < SLOW_ROUNDS)
      slow_seconds.push_back(runIntoSink(programs.slow, files.scene, files).seconds);
  }
  ::unlink(files.sink.c_str());
  const double own = median(fast_seconds);
  std::printf("| %-9s | %5.1f | %6.1f | %6.1f x | %6.2f | %6.2f | %6.2f x |\n", workload.name, scene_bytes / 1e6,
              text_bytes / 1e6, median(slow_seconds) / own, own / median(cat_seconds),
              aboveFloor(programs, files, text_bytes), median(peak) / scene_bytes);
  std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv) {
  if (argc < 4) {
    std::fputs("Usage: compare FAST SLOW FLOOR [folder]\n", stderr);
    return 1;
  }
  const Programs programs = {argv[1], argv[2], argv[3]};
  std::string folder = argc > 4 ? argv[4] : "/dev/shm";
  folder += "/kova-compare-";
  const Files files = {folder + "scene.kb", folder + "fast.txt", folder + "slow.txt", folder + "sink.txt"};
  std::puts("| workload | file MB | text MB | against fprintf | against cat | against floor | peak / file |\n"
            "|---|---|---|---|---|---|---|");
  int status = 0;
  for (const kova::bench::Workload &workload : kova::bench::WORKLOADS) {
    if (!apart([&] { return makeScene(workload, files.scene); })) {
      std::fprintf(stderr, "%s cannot be made\n", files.scene.c_str());
      return 1;
    }
    run(programs.fast, files.scene, files.fast_text.c_str());
    run(programs.slow, files.scene, files.slow_text.c_str());
    if (!apart([&] { return sameText(files); })) {
      std::printf("%s: the two programs write different texts\n", workload.name);
      status = 1;
      continue;
    }
    ::unlink(files.slow_text.c_str());
    measure(workload, programs, files, sizeOf(files.scene), sizeOf(files.fast_text));
  }
  for (const std::string &path : {files.scene, files.fast_text, files.slow_text, files.sink})
    ::unlink(path.c_str());
  return status;
}
