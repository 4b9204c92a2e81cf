/// What the fuzz targets and the replay of their corpus share: one function per target, which takes any bytes.
///
/// Each runs a model through reader, checker and dump, and returns what does not hold of it, a line for each: empty
/// where all is well. The checks print on standard output, as everywhere; whoever runs many rounds closes or redirects
/// it.
#pragma once

#include "harness/bytes.h"

#include <span>
#include <string>

namespace kova::harness {

/// A whole file: load, check, dump, as the program does; then write and load again, which must give the same model.
std::string auditFile(std::span<const unsigned char> input);

/// The first byte chooses one of the 28 list readers, the rest is the list in file order.
std::string auditList(std::span<const unsigned char> input);

/// The first byte chooses one of the eight kinds of maker block and how often it stands in a list, the second one the
/// stated size against the real one, the rest is the block: decode, check and dump.
std::string auditExtension(std::span<const unsigned char> input);

/// Makes most files get past the header: right size, header size, tag and version; list sizes that add up.
void repairHeader(Bytes &file);

} // namespace kova::harness
