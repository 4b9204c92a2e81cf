#include "samples/hurt.h"

#include <algorithm>
#include <string_view>

namespace kova::samples {

namespace {

using Random = std::mt19937;

/// @return a number below `most`, which is not 0.
std::size_t below(std::size_t most, Random &random) { return random() % most; }

Bytes slice(const Bytes &file, std::size_t begin, std::size_t end) {
  return Bytes(file.begin() + static_cast<std::ptrdiff_t>(begin), file.begin() + static_cast<std::ptrdiff_t>(end));
}

void append(Bytes &file, const Bytes &more) { file.insert(file.end(), more.begin(), more.end()); }

Bytes strange(std::size_t size, Random &random) {
  Bytes bytes(size);
  for (unsigned char &byte : bytes)
    byte = static_cast<unsigned char>(random() >> 8);
  return bytes;
}

Bytes text(std::size_t size) {
  constexpr std::string_view LINE = "Received: from one host by another; the scene follows as an attachment\n";
  Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i)
    bytes[i] = static_cast<unsigned char>(i + 1 == size ? '\n' : LINE[i % LINE.size()]);
  return bytes;
}

// --- Transfers of text ----------------------------------------------------------------------------------------------

Hurt lineEnds(const Bytes &file, Random &) {
  Hurt hurt;
  for (const unsigned char byte : file) {
    if (byte == '\n')
      hurt.bytes.push_back('\r');
    hurt.bytes.push_back(byte);
  }
  return hurt;
}

Hurt returnsLost(const Bytes &file, Random &) {
  Hurt hurt;
  for (std::size_t i = 0; i < file.size(); ++i)
    if (file[i] != '\r' || i + 1 == file.size() || file[i + 1] != '\n')
      hurt.bytes.push_back(file[i]);
  return hurt;
}

Hurt controlZ(const Bytes &file, Random &) {
  const auto end = std::find(file.begin(), file.end(), 0x1a);
  return {Bytes(file.begin(), end), static_cast<std::size_t>(end - file.begin()), file.size()};
}

Hurt utf8(const Bytes &file, Random &) {
  Hurt hurt;
  for (const unsigned char byte : file) {
    if (byte >= 0x80)
      hurt.bytes.push_back(byte >= 0xc0 ? 0xc3 : 0xc2);
    hurt.bytes.push_back(byte >= 0xc0 ? byte - 0x40 : byte);
  }
  return hurt;
}

Hurt replaced(const Bytes &file, Random &) {
  Hurt hurt;
  for (const unsigned char byte : file)
    append(hurt.bytes, byte < 0x80 ? Bytes{byte} : Bytes{0xef, 0xbf, 0xbd});
  return hurt;
}

// --- Other machines -------------------------------------------------------------------------------------------------

/// Turns each whole group of so many bytes round.
template <std::size_t N> Hurt turned(const Bytes &file, Random &) {
  Hurt hurt = {file};
  for (std::size_t i = 0; i + N <= file.size(); i += N)
    std::reverse(hurt.bytes.begin() + static_cast<std::ptrdiff_t>(i),
                 hurt.bytes.begin() + static_cast<std::ptrdiff_t>(i + N));
  return hurt;
}

// --- What stands around ---------------------------------------------------------------------------------------------

Hurt around(const Bytes &front, const Bytes &file, const Bytes &behind) {
  Hurt hurt = {front};
  append(hurt.bytes, file);
  append(hurt.bytes, behind);
  return hurt;
}

Hurt byteInFront(const Bytes &file, Random &random) { return around(strange(1, random), file, {}); }
Hurt mailInFront(const Bytes &file, Random &random) { return around(text(1 + below(2000, random)), file, {}); }
Hurt muchInFront(const Bytes &file, Random &random) {
  return around(strange(1 + below(65536, random), random), file, {});
}
Hurt zerosInFront(const Bytes &file, Random &random) { return around(Bytes(1 + below(4096, random)), file, {}); }
Hurt zerosBehind(const Bytes &file, Random &random) { return around({}, file, Bytes(1 + below(4096, random))); }
Hurt strangeBehind(const Bytes &file, Random &random) {
  return around({}, file, strange(1 + below(4096, random), random));
}
Hurt aroundIt(const Bytes &file, Random &random) {
  const Bytes behind = text(1 + below(500, random));
  return around(text(1 + below(2000, random)), file, behind);
}

// --- The header -----------------------------------------------------------------------------------------------------

template <Word (*make)(Random &)> Hurt version(const Bytes &file, Random &random) {
  Hurt hurt = {file};
  harness::setWordAt(hurt.bytes, 0, make(random));
  return hurt;
}
Word zero(Random &) { return 0; }
Word any(Random &random) { return static_cast<Word>(random() | 0x80); }

template <std::size_t N> Hurt headerGone(const Bytes &file, Random &) {
  Hurt hurt = {file, 0, std::min(N, file.size())};
  std::fill_n(hurt.bytes.begin(), hurt.hole_end, static_cast<unsigned char>(0));
  return hurt;
}

template <std::size_t N> Hurt headerMissing(const Bytes &file, Random &) {
  const std::size_t gone = std::min(N, file.size());
  return {slice(file, gone, file.size()), 0, gone};
}

// --- Holes ----------------------------------------------------------------------------------------------------------

Hurt paddedCut(const Bytes &file, Random &random) {
  Hurt hurt = {file, FILE_HEADER_BYTES + below(file.size() - FILE_HEADER_BYTES, random), file.size()};
  std::fill(hurt.bytes.begin() + static_cast<std::ptrdiff_t>(hurt.hole_begin), hurt.bytes.end(),
            static_cast<unsigned char>(0));
  return hurt;
}

/// The blocks of a storage device that fit well into a file of that size.
std::size_t blockOf(const Bytes &file) { return file.size() >= 16384 ? 512 : file.size() >= 4096 ? 128 : 64; }

/// A block behind the header, as a hole of a copy of the file.
Hurt withBlock(const Bytes &file, Random &random) {
  const std::size_t block = blockOf(file);
  const std::size_t first = (FILE_HEADER_BYTES + block - 1) / block;
  const std::size_t blocks = std::max(file.size() / block, first + 1) - first;
  const std::size_t begin = std::min((first + below(blocks, random)) * block, file.size() - 1);
  return {file, begin, std::min(begin + block, file.size())};
}

/// @return the file with other bytes in place of the hole.
Hurt inPlaceOfHole(const Bytes &file, const Hurt &hole, const Bytes &other) {
  Hurt hurt = around(slice(file, 0, hole.hole_begin), other, slice(file, hole.hole_end, file.size()));
  hurt.hole_begin = hole.hole_begin;
  hurt.hole_end = hole.hole_end;
  return hurt;
}

Hurt zeroBlock(const Bytes &file, Random &random) {
  const Hurt hole = withBlock(file, random);
  return inPlaceOfHole(file, hole, Bytes(hole.hole_end - hole.hole_begin));
}
Hurt strangeBlock(const Bytes &file, Random &random) {
  const Hurt hole = withBlock(file, random);
  return inPlaceOfHole(file, hole, strange(hole.hole_end - hole.hole_begin, random));
}
Hurt blockMissing(const Bytes &file, Random &random) { return inPlaceOfHole(file, withBlock(file, random), {}); }
Hurt blockDoubled(const Bytes &file, Random &random) {
  const Hurt hole = withBlock(file, random);
  const Bytes block = slice(file, hole.hole_begin, hole.hole_end);
  return around(slice(file, 0, hole.hole_end), block, slice(file, hole.hole_end, file.size()));
}

/// Two of the blocks of a storage device, as long as the file has at least four of them.
Hurt blocksSwapped(const Bytes &file, Random &random) {
  constexpr std::size_t BLOCKS[] = {4096, 2048, 512};
  std::size_t block = BLOCKS[below(std::size(BLOCKS), random)];
  while (block > 64 && file.size() < 4 * block)
    block /= 2;
  const std::size_t first = (FILE_HEADER_BYTES + block - 1) / block;
  const std::size_t number = file.size() / block - first;
  const std::size_t one = first + below(number, random);
  const std::size_t other = first + below(number, random);
  Hurt hurt = {file};
  if (one != other)
    std::swap_ranges(hurt.bytes.begin() + static_cast<std::ptrdiff_t>(one * block),
                     hurt.bytes.begin() + static_cast<std::ptrdiff_t>((one + 1) * block),
                     hurt.bytes.begin() + static_cast<std::ptrdiff_t>(other * block));
  return hurt;
}

template <std::size_t N> Hurt bytesDropped(const Bytes &file, Random &random) {
  const std::size_t at = FILE_HEADER_BYTES + below(file.size() - FILE_HEADER_BYTES, random);
  return inPlaceOfHole(file, {{}, at, std::min(at + N, file.size())}, {});
}
Hurt bytePutIn(const Bytes &file, Random &random) {
  const std::size_t at = FILE_HEADER_BYTES + below(file.size() - FILE_HEADER_BYTES, random);
  return inPlaceOfHole(file, {{}, at, at}, strange(1, random));
}

constexpr DamageKind KINDS[] = {
    {"line-ends", Remedy::undone, 100, lineEnds},
    {"utf-8", Remedy::undone, 100, utf8},
    {"words-reversed", Remedy::undone, 100, turned<4>},
    {"pairs-reversed", Remedy::undone, 100, turned<2>},
    {"byte-in-front", Remedy::undone, 100, byteInFront},
    {"mail-in-front", Remedy::undone, 100, mailInFront},
    {"zeros-in-front", Remedy::undone, 100, zerosInFront},
    {"much-in-front", Remedy::undone, 100, muchInFront},
    {"zeros-behind", Remedy::undone, 100, zerosBehind},
    {"strange-behind", Remedy::undone, 100, strangeBehind},
    {"around", Remedy::undone, 100, aroundIt},
    {"version-zero", Remedy::undone, 100, version<zero>},
    {"version-any", Remedy::undone, 100, version<any>},
    {"block-doubled", Remedy::undone, 98, blockDoubled},
    {"blocks-swapped", Remedy::undone, 80, blocksSwapped},
    {"returns-lost", Remedy::undone, 70, returnsLost},
    {"padded-cut", Remedy::salvaged, 98, paddedCut},
    {"zero-block", Remedy::salvaged, 97, zeroBlock},
    {"strange-block", Remedy::salvaged, 92, strangeBlock},
    {"block-missing", Remedy::salvaged, 97, blockMissing},
    {"byte-dropped", Remedy::salvaged, 98, bytesDropped<1>},
    {"word-dropped", Remedy::salvaged, 98, bytesDropped<4>},
    {"byte-put-in", Remedy::salvaged, 98, bytePutIn},
    {"header-gone", Remedy::salvaged, 98, headerGone<100>},
    {"sector-gone", Remedy::salvaged, 98, headerGone<512>},
    {"header-missing", Remedy::salvaged, 98, headerMissing<100>},
    {"sector-missing", Remedy::salvaged, 98, headerMissing<512>},
    {"control-z", Remedy::salvaged, 97, controlZ},
    {"replaced", Remedy::told, 0, replaced},
};

} // namespace

std::span<const DamageKind> damageKinds() { return KINDS; }

Bytes hurtSample(const DamageKind &kind) {
  File scene = build(VERSION_1,
                     "SceneList CamList { Cam } ObjList { Obj*5 } VtxList { VtxGroup vtx_num=60 } "
                     "TriList { TriGroup { Tri*3 } } MatList { Mat*2 } NameList { Name text=one Name text=two }",
                     LinkWords::none);
  // So that no kind of damage leaves it as it is, there are a line end, the last byte of a text, and bytes from 80 on.
  setWord(scene, "VtxGroup", 0, "vtx[7]", 0x3f0d0a00);
  setWord(scene, "VtxGroup", 0, "vtx[50]", 0x3f00001a);
  Random random(5);
  return kind.inflict(scene.bytes, random).bytes;
}

} // namespace kova::samples
