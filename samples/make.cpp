/// make_samples: writes the sample files that the project makes itself into a folder.
///
///     make_samples folder            the bundled samples
///     make_samples --small folder    the many small valid files of the sweeps, as seeds for fuzzing

#include "samples/made.h"

#include <cstdio>
#include <cstring>
#include <fstream>

namespace {

int write(const std::string &path, const kova::samples::Bytes &bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (file)
    return 0;
  std::fprintf(stderr, "%s cannot be written\n", path.c_str());
  return 1;
}

} // namespace

int main(int argc, char **argv) {
  const bool small = argc > 1 && std::strcmp(argv[1], "--small") == 0;
  if (argc != (small ? 3 : 2)) {
    std::fputs("Usage: make_samples [--small] folder\n", stderr);
    return 1;
  }
  const std::string folder = argv[argc - 1];
  int status = 0;
  if (small) {
    for (const kova::samples::Sample &sample : kova::samples::smallSamples())
      status |= write(folder + "/" + sample.name + ".kb", sample.file.bytes);
  } else {
    for (const kova::samples::Made &made : kova::samples::madeSamples())
      status |= write(folder + "/" + made.name + ".kb", made.bytes);
  }
  return status;
}
