#include "samples/builder.h"

#include "samples/notation.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <stdexcept>

namespace kova::samples {

namespace {

[[noreturn]] void fail(const std::string &what) { throw std::invalid_argument("builder: " + what); }

struct Out {
  Word version;
  LinkWords links;
  std::map<std::string, Layout> layouts = parseLayouts();
  File file = {};
  std::map<std::string, std::size_t> seen = {}; ///< records of each kind so far
};

struct Record {
  const Node &node;
  const Layout &layout;
  std::size_t number;
  std::size_t begin;
};

bool isExt(const Node &node) { return node.kind.ends_with("Ext"); }

/// Whether a child is one of those that a layout means: a kind, or with * at the end the beginning of kinds.
bool isMeant(const Node &child, const std::string &pattern) {
  return !isExt(child) && (pattern.back() == '*' ? child.kind.starts_with(pattern.substr(0, pattern.size() - 1))
                                                 : child.kind == pattern);
}

Word countOf(const Node &node, const std::string &pattern) {
  return static_cast<Word>(
      std::ranges::count_if(node.child, [&pattern](const Node &child) { return isMeant(child, pattern); }));
}

/// What the text says, else the number of children for a count of them, else 0.
Word stated(const Record &record, const std::string &name) {
  if (const auto set = record.node.set.find(name); set != record.node.set.end())
    return set->second;
  const auto field = std::ranges::find(record.layout, name, &Field::name);
  return field != record.layout.end() && field->mark == '@' ? countOf(record.node, field->count) : 0;
}

/// The entries of a size table: as many as its count says.
Word entriesOf(const Record &record, const Field &table) {
  for (const Field &field : record.layout)
    if (field.mark == '@' && field.count == table.count)
      return stated(record, field.name);
  return 0;
}

Word evaluate(const Record &record, const std::string &expression) {
  Word value = 0;
  char operation = '+';
  for (std::size_t at = 0; at < expression.size();) {
    const std::size_t end = std::min(expression.find_first_of("*/+", at), expression.size());
    const std::string atom = expression.substr(at, end - at);
    const Word operand = std::isdigit(atom[0]) != 0 ? static_cast<Word>(std::stoul(atom)) : stated(record, atom);
    value = operation == '+' ? value + operand : operation == '*' ? value * operand : value / operand;
    operation = end < expression.size() ? expression[end] : ' ';
    at = end + 1;
  }
  return value;
}

void put(Out &out, const Record &record, const std::string &field, Word value) {
  const std::size_t at = out.file.bytes.size();
  out.file.words.push_back({record.node.kind, record.number, field, at});
  out.file.bytes.resize(at + sizeof(Word));
  harness::setWordAt(out.file.bytes, at, value);
}

/// Words that nobody sets hold their position in the record, unless they are links and there are to be none.
/// @param i the position in an array
void putOwn(Out &out, const Record &record, const std::string &field, char mark, Word i = 0) {
  const auto position = static_cast<Word>((out.file.bytes.size() - record.begin) / sizeof(Word));
  const bool is_link = mark == '>' || mark == '&';
  Word value = mark == '~' ? std::bit_cast<Word>(static_cast<float>(position)) : position;
  if (is_link && out.links == LinkWords::none)
    value = mark == '&' && i % 2 == 0 ? 0 : NO_LINK;
  put(out, record, field, value);
}

std::string entry(const std::string &array, std::size_t i) { return array + "[" + std::to_string(i) + "]"; }

void putArray(Out &out, const Record &record, const std::string &name, Word count, char mark = 'w') {
  for (Word i = 0; i < count; ++i)
    putOwn(out, record, entry(name, i), mark, i);
}

/// The six references of a triangle group, each in the form that its bits of `tri_anim_type` choose.
void putRefs(Out &out, const Record &record) {
  Word bits = stated(record, "tri_anim_type");
  for (const std::string name : {"vtx", "tri_color", "vtx_color", "tri_nv", "vtx_nv", "st"}) {
    Word entries = (bits & 1) != 0 ? stated(record, "tri_anim_frame_num") + 1 : 1;
    if ((bits & 3) == 2) {
      entries = stated(record, "keys");
      put(out, record, name + "_anim_key_num", entries);
      putArray(out, record, name + "_anim_key", entries);
    }
    putArray(out, record, name + "_group_index", entries, '>');
    bits >>= 4;
  }
}

void putForm(Out &out, const Record &record, const std::string &form) {
  Bytes &bytes = out.file.bytes;
  if (form == "refs")
    putRefs(out, record);
  for (Word i = 0; form == "texels" && i < stated(record, "texels"); ++i)
    bytes.push_back(static_cast<unsigned char>(i + 1));
  bytes.insert(bytes.end(), record.node.text.begin(), record.node.text.end());
  bytes.resize(bytes.size() + (form == "text" ? -record.node.text.size() % 4 : 0));
}

bool isScalar(const Field &field) {
  return std::string("%$*").find(field.mark) == std::string::npos && (field.mark == '@' || field.count.empty());
}

void putField(Out &out, const Record &record, const Field &field, Word tag, Word position) {
  if (field.mark == '$')
    putForm(out, record, field.name);
  else if (field.mark == '*')
    putArray(out, record, field.name, entriesOf(record, field));
  else if (!isScalar(field))
    putArray(out, record, field.name, field.mark == '%' ? 0 : evaluate(record, field.count), field.mark);
  else if (record.node.set.contains(field.name) || field.mark == '@' || field.mark == '.')
    put(out, record, field.name, stated(record, field.name));
  else if (field.mark == '!' || field.mark == '#')
    put(out, record, field.name, field.mark == '!' ? tag : position);
  else if (field.mark == '^')
    put(out, record, field.name, static_cast<Word>(4 * std::ranges::count_if(record.layout, isScalar)));
  else
    putOwn(out, record, field.name, field.mark); // sizes, too, until they are known
}

void patch(Out &out, const Record &record, const std::string &field, std::size_t value) {
  if (!record.node.set.contains(field))
    setWord(out.file, record.node.kind, record.number, field, static_cast<Word>(value));
}

std::size_t putRecord(Out &out, const Node &node, Word tag, Word position);

/// A block of stated size is cut or filled up to it; else it is as long as what it carries.
void putBlock(Out &out, const Record &record, const std::string &size, const std::string &name, const Node *ext) {
  const std::size_t begin = out.file.bytes.size();
  if (ext != nullptr)
    putRecord(out, *ext, 0, 0);
  if (!record.node.set.contains(size))
    return patch(out, record, size, out.file.bytes.size() - begin);
  const std::size_t bytes = stated(record, size) / 4 * 4;
  std::erase_if(out.file.words, [=](const NamedWord &word) { return word.offset >= begin + bytes; });
  out.file.bytes.resize(std::min(out.file.bytes.size(), begin + bytes));
  for (std::size_t at = out.file.bytes.size() - begin; at < bytes; at += 4)
    put(out, record, entry(name, at / 4), static_cast<Word>(name[0]) << 24 | static_cast<Word>(at / 4));
}

void putBlocks(Out &out, const Record &record) {
  const std::string van = fullName("V");
  if (std::ranges::find(record.layout, van, &Field::name) == record.layout.end())
    return;
  const Node bare{record.node.kind + "Ext", {}, "", {}};
  const bool decoded = out.version == VERSION_2 && out.layouts.contains(bare.kind);
  const bool has_own = !record.node.child.empty() && isExt(record.node.child.back());
  const bool wants = decoded && (!record.node.set.contains(van) || stated(record, van) > 0);
  putBlock(out, record, van, "van", has_own ? &record.node.child.back() : wants ? &bare : nullptr);
  putBlock(out, record, fullName("U"), "usr", nullptr);
}

void putChildren(Out &out, const Record &record, Word tag) {
  std::map<std::string, Word> siblings;
  std::map<std::string, Word> entries;
  for (const Node &child : record.node.child) {
    if (isExt(child))
      continue;
    // Tags of sub-records are never tested, but for that of a collision.
    const bool second_kind = child.kind == "VtxColorGroup" || child.kind == "VtxNvGroup";
    const Word child_tag = child.kind == "Coll" ? 0x000d1000 : tag + (second_kind ? 0x200 : 0x100);
    const std::size_t bytes = putRecord(out, child, child_tag, siblings[child.kind]++);
    for (const Field &field : record.layout)
      if (field.mark == '*' && isMeant(child, field.count) && entries[field.name] < entriesOf(record, field))
        patch(out, record, entry(field.name, entries[field.name]++), bytes);
    if (child.kind == "Coll") // a collision group's blocks follow each of its collisions
      putBlocks(out, record);
  }
  if (record.node.kind != "CollGroup")
    putBlocks(out, record);
}

const Layout &layoutOf(const Out &out, const std::string &kind) {
  const bool two_kinds = kind == "ColorList" || kind == "VectorList";
  const bool common = kind.ends_with("List") && !out.layouts.contains(kind);
  return out.layouts.at(two_kinds ? "TwoKindList" : common ? "List" : kind);
}

/// @return the record's bytes.
std::size_t putRecord(Out &out, const Node &node, Word tag, Word position) {
  const Record record{node, layoutOf(out, node.kind), out.seen[node.kind]++, out.file.bytes.size()};
  for (const auto &[name, value] : node.set)
    if (std::ranges::find(record.layout, name, &Field::name) == record.layout.end())
      fail(node.kind + " has no " + name);
  for (const Field &field : record.layout)
    putField(out, record, field, tag, position);
  putChildren(out, record, tag);
  for (const Field &field : record.layout)
    if (field.mark == '=')
      patch(out, record, field.name, out.file.bytes.size() - record.begin);
  return out.file.bytes.size() - record.begin;
}

/// Takes the node of that kind out of the tree, or else a bare one.
Node takeNode(std::vector<Node> &nodes, const std::string &kind, bool &named) {
  const auto found = std::ranges::find(nodes, kind, &Node::kind);
  named = found != nodes.end();
  Node node = named ? *found : Node{kind, {}, "", {}};
  if (named)
    nodes.erase(found);
  return node;
}

} // namespace

File build(Word version, const std::string &text, LinkWords links) {
  std::istringstream tokens(text);
  std::vector<Node> nodes = parseNodes(tokens);
  bool named;
  Node header = takeNode(nodes, "FileHeader", named);
  header.set.emplace("version", version);
  Out out{version, links};
  const std::size_t header_bytes = putRecord(out, header, 0, 0);
  for (const ListRow &list : LISTS) {
    const Node node = takeNode(nodes, list.name, named);
    const bool of_version2 = &list >= LISTS.data() + VERSION_1_LIST_NUM;
    if (node.set.contains("absent") || (!named && of_version2))
      continue;
    const std::size_t size_at = harness::sizeOffset(list);
    if (size_at >= header_bytes)
      fail(node.kind + ": the header has no word for its size");
    harness::setWordAt(out.file.bytes, size_at, static_cast<Word>(putRecord(out, node, list.tag, 0)));
  }
  if (!nodes.empty())
    fail("no such list: " + nodes[0].kind);
  setWord(out.file, "FileHeader", 0, "size", static_cast<Word>(out.file.bytes.size()));
  return out.file;
}

std::size_t offsetOf(const File &file, const std::string &kind, std::size_t number, const std::string &field) {
  for (const NamedWord &named : file.words)
    if (named.kind == kind && named.number == number && named.field == field)
      return named.offset;
  fail("no word " + kind + " " + std::to_string(number) + " " + field);
}

Word getWord(const File &file, const std::string &kind, std::size_t number, const std::string &field) {
  return harness::wordAt(file.bytes, offsetOf(file, kind, number, field));
}

void setWord(File &file, const std::string &kind, std::size_t number, const std::string &field, Word value) {
  harness::setWordAt(file.bytes, offsetOf(file, kind, number, field), value);
}

File edited(File file, const std::string &edits) {
  std::istringstream each(edits);
  for (std::string edit; std::getline(each, edit, ';');) {
    std::istringstream words(edit);
    std::string kind, field, value;
    std::size_t number;
    words >> kind >> number;
    while (words >> field >> value) {
      const bool relative = value[0] == '+' || value[0] == '-';
      const Word base = relative ? getWord(file, kind, number, field) : 0;
      setWord(file, kind, number, field, base + static_cast<Word>(std::stoll(value, nullptr, 0)));
    }
  }
  return file;
}

} // namespace kova::samples
