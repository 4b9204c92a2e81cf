/// What the fuzz targets and the replay of their corpus share: one function per target, which takes any bytes.
///
/// Each runs a model through reader, checker and dump and aborts where the model breaks an invariant. The checks print
/// on standard output, as everywhere; whoever runs many rounds closes or redirects it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kova::fuzz {

inline constexpr std::size_t INPUT_MAX = 64 * 1024;

/// A whole file: load, check, dump, as the program does.
void auditFile(const std::uint8_t *data, std::size_t size);

/// The first byte chooses one of the 28 list readers, the rest is the list in file order.
void auditList(const std::uint8_t *data, std::size_t size);

/// The first byte chooses one of the eight kinds of maker block and how often it stands in a list, the second one the
/// stated size against the real one, the rest is the block: decode, check and dump.
void auditExtension(const std::uint8_t *data, std::size_t size);

/// Makes most files get past the header: right size, header size, tag and version; list sizes that add up.
void repairHeader(std::vector<std::uint8_t> &file);

} // namespace kova::fuzz
