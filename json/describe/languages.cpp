/// The format in the languages of Kaitai Struct and of ImHex.
#include "json/describe/record.h"

#include <array>

namespace kova::describe {

namespace {

constexpr const char *MADE = "Made from the description of the format that the programs for KOVA scenes are made of.";

/// Simple types: here, in Kaitai Struct, in ImHex.
constexpr std::array<std::array<const char *, 3>, 4> TYPES = {
    {{"word", "u4", "u32"}, {"index", "s4", "s32"}, {"real", "f4", "float"}, {"byte", "", "u8"}}};

std::string typeName(const std::string &type, std::size_t language) {
  for (const auto &row : TYPES)
    if (type == row[0])
      return row[language];
  return type;
}

// --- Kaitai Struct --------------------------------------------------------------------------------------------------

std::string quoted(const std::string &expression) { return '\'' + expression + "'\n"; }

/// @return the attributes of a field, each on a line that begins with `indent`.
std::string attributes(const Field &field, const std::string &indent) {
  const bool to_the_end = field.count == TO_THE_END;
  std::string text;
  const auto add = [&](const std::string &line) { text += indent + line; };
  if (!field.cases.empty()) {
    add("type:\n");
    add("  switch-on: " + field.chosen_by + "\n");
    add("  cases:\n");
    for (const auto &[value, type] : field.cases)
      add("    " + std::to_string(value) + ": " + type + '\n');
    add("    _: " + field.type + '\n');
  } else if (field.type != "byte") {
    add("type: " + typeName(field.type, 1) + '\n');
  }
  if (!field.condition.empty())
    add("if: " + quoted(field.condition));
  if (!field.bytes.empty())
    add("size: " + quoted(field.bytes));
  if (field.type == "byte")
    add(to_the_end ? "size-eos: true\n" : "size: " + quoted(field.count));
  else if (!field.count.empty())
    add(to_the_end ? "repeat: eos\n" : "repeat: expr\n");
  if (field.type != "byte" && !field.count.empty() && !to_the_end)
    add("repeat-expr: " + quoted(field.count));
  return text;
}

std::string sequence(const Record &record, const std::string &indent) {
  std::string text = indent + "seq:\n";
  for (const Field &field : record.fields)
    text += indent + "  - id: " + field.name + '\n' + attributes(field, indent + "    ");
  return text;
}

// --- ImHex ----------------------------------------------------------------------------------------------------------

/// @return an expression in the language of ImHex.
std::string translated(std::string expression) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 5> WORDS = {
      {{" and ", " && "}, {" or ", " || "}, {"not (", "!("}, {"_root.file_header.", "file_"}, {"_parent.", "parent."}}};
  for (const auto &[from, to] : WORDS)
    for (std::size_t at; (at = expression.find(from)) != expression.npos;)
      expression.replace(at, from.size(), to);
  return expression;
}

struct Imhex {
  const std::vector<Record> &records;
  const Record &record;
  std::string text = {};

  void add(const std::string &indent, const std::string &line) { text += indent + line + '\n'; }

  bool fills(const std::string &type) const {
    for (const Record &other : records)
      if (other.name == type)
        return fillsItsBytes(other);
    return false;
  }
  std::string countOf(const Field &field) const {
    if (field.count != TO_THE_END)
      return translated(field.count);
    const std::string left = &record == &records.back() ? "sizeof($) - $" : "bytes - ($ - addressof(this))";
    return field.type == "byte" ? left : '(' + left + ") / 4";
  }
  void addOne(const Field &field, const std::string &type, const std::string &indent) {
    const std::string bytes = fills(type) ? '<' + translated(field.bytes) + '>' : "";
    add(indent,
        typeName(type, 2) + bytes + ' ' + field.name + (field.count.empty() ? "" : '[' + countOf(field) + ']') + ';');
  }
  void addChosen(const Field &field, const std::string &indent) {
    const char *begin = "if (";
    for (const auto &[value, type] : field.cases) {
      add(indent, begin + field.chosen_by + " == " + std::to_string(value) + ") {");
      addOne(field, type, indent + "  ");
      begin = "} else if (";
    }
    add(indent, "} else {");
    addOne(field, field.type, indent + "  ");
    add(indent, "}");
  }
  void addField(const Field &field) {
    const std::string indent = field.condition.empty() ? "  " : "    ";
    const std::string end = field.name + "_end";
    if (!field.condition.empty())
      add("  ", "if (" + translated(field.condition) + ") {");
    if (!field.bytes.empty())
      add(indent, "u64 " + end + " = $ + " + translated(field.bytes) + ';');
    if (field.cases.empty())
      addOne(field, field.type, indent);
    else
      addChosen(field, indent);
    if (!field.bytes.empty())
      add(indent, "$ = " + end + ';');
    if (!field.condition.empty())
      add("  ", "}");
  }
};

} // namespace

std::string kaitaiText(const std::vector<Record> &records) {
  std::string text =
      std::string("# ") + MADE + "\nmeta:\n  id: kova\n  title: KOVA 3D scene\n  file-extension: kb\n  endian: be\n";
  text += sequence(records.back(), "") + "types:\n";
  for (const Record &record : records)
    if (&record != &records.back())
      text += "  " + record.name + ":\n" + sequence(record, "    ");
  return text;
}

std::string imhexText(const std::vector<Record> &records) {
  std::string text =
      std::string("// ") + MADE +
      "\n#pragma endian big\n#pragma MIME model/x-kova\n#pragma array_limit 0x7fffffff\n#pragma pattern_limit 0x7fffffff\n\nu32 file_version @ 0;\n";
  for (const Record &record : records) {
    Imhex imhex{records, record};
    const bool fills = fillsItsBytes(record) && &record != &records.back();
    imhex.add("\nstruct ", record.name + (fills ? "<auto bytes> {" : " {"));
    for (const Field &field : record.fields)
      imhex.addField(field);
    text += imhex.text + "};\n";
  }
  return text + "\nkova file @ 0;\n";
}

} // namespace kova::describe
