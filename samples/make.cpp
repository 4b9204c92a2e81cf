/// make_samples: writes the sample files that the project makes itself into a folder.
///
///     make_samples folder                       the bundled samples
///     make_samples --hurt folder                one file for each kind of damage as it happens to whole files
///     make_samples --small folder               the many small valid files of the sweeps, as seeds for fuzzing
///     make_samples --build version text file    one file from the builder's notation

#include "samples/hurt.h"
#include "samples/made.h"

#include <cstdio>
#include <cstring>
#include <exception>
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

int writeOne(const char *version, const char *text, const char *path) {
  try {
    const auto number = static_cast<kova::Word>(std::stoul(version, nullptr, 0));
    return write(path, kova::samples::build(number, text).bytes);
  } catch (const std::exception &error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}

} // namespace

int main(int argc, char **argv) {
  if (argc == 5 && std::strcmp(argv[1], "--build") == 0)
    return writeOne(argv[2], argv[3], argv[4]);
  const bool small = argc > 1 && std::strcmp(argv[1], "--small") == 0;
  const bool hurt = argc > 1 && std::strcmp(argv[1], "--hurt") == 0;
  if (argc != (small || hurt ? 3 : 2)) {
    std::fputs("Usage: make_samples [--small | --hurt] folder\n"
               "       make_samples --build version text file\n",
               stderr);
    return 1;
  }
  const std::string folder = argv[argc - 1];
  int status = 0;
  if (hurt) {
    for (const kova::samples::DamageKind &kind : kova::samples::damageKinds())
      status |= write(folder + "/" + kind.name + ".hurt", kova::samples::hurtSample(kind));
  } else if (small) {
    for (const kova::samples::Sample &sample : kova::samples::smallSamples())
      status |= write(folder + "/" + sample.name + ".kb", sample.file.bytes);
  } else {
    for (const kova::samples::Made &made : kova::samples::madeSamples())
      status |= write(folder + "/" + made.name + ".kb", made.bytes);
  }
  return status;
}
