/// Writes the JSON Schema of the documents of kbjson, which is made of what the format says.
#include "kova/kb.h"
#include "records/forms.h"

#include <string>
#include <utility>
#include <vector>

namespace kova::json {

namespace {

/// Keys with the schemas of their values.
using Properties = std::vector<std::pair<std::string, std::string>>;

std::string reference(const char *name) { return std::string(R"({"$ref":"#/$defs/)") + name + "\"}"; }
std::string arrayOf(const std::string &items) { return R"({"type":"array","items":)" + items + '}'; }
std::string either(const std::string &one, const std::string &other) {
  return R"({"anyOf":[)" + one + ',' + other + "]}";
}

/// Adds a key. One that is known, from another form of the record, gets another choice.
void add(Properties &properties, const std::string &key, const std::string &schema) {
  for (auto &[known, choices] : properties)
    if (known == key) {
      if (choices.find(schema) == choices.npos)
        choices = either(choices, schema);
      return;
    }
  properties.emplace_back(key, schema);
}

template <class Strings> std::string joined(const Strings &strings) {
  std::string text;
  for (const std::string &string : strings)
    text += (text.empty() ? "" : ",") + string;
  return text;
}

std::string objectOf(const Properties &properties, const std::vector<std::string> &required = {}) {
  std::vector<std::string> members;
  for (const auto &[key, schema] : properties)
    members.push_back('"' + key + "\":" + schema);
  return R"({"type":"object","additionalProperties":false,"properties":{)" + joined(members) + R"(},"required":[)" +
         joined(required) + "]}";
}

std::string slotSchema(const Slot &slot) {
  if (slot.words == 1)
    return reference(slot.real != 0 ? "float" : "word");
  std::vector<std::string> words;
  for (std::size_t part = 0; part < slot.words; ++part)
    words.push_back(reference((slot.real >> part & 1) != 0 ? "float" : "word"));
  const std::string number = std::to_string(slot.words);
  return R"({"type":"array","minItems":)" + number + R"(,"maxItems":)" + number + R"(,"prefixItems":[)" +
         joined(words) + "]}";
}

void addSlots(Properties &properties, std::span<const Slot> slots) {
  for (const Slot &slot : slots)
    add(properties, std::string(slot.key), slotSchema(slot));
}

/// The keys that a record has to have, whatever its form.
std::vector<std::string> requiredOf(std::span<const Slot> slots) {
  std::vector<std::string> keys;
  for (const Slot &slot : slots)
    if (!follows(slot.role))
      keys.push_back('"' + std::string(slot.key) + '"');
  return keys;
}

template <const auto &TABLE, class Record> std::string recordSchema(std::size_t fixed, Properties properties = {});

std::string rowsSchema(std::span<const Slot> slots) {
  Properties all;
  addSlots(all, slots);
  std::vector<std::string> names;
  for (const auto &property : all)
    names.push_back('"' + property.first + '"');
  return objectOf({{"all", objectOf(all)},
                   {"words", arrayOf(R"({"enum":[)" + joined(names) + "]}")},
                   {"rows", arrayOf(R"({"type":"array"})")}},
                  {"\"rows\""});
}

/// Collects the members behind the fixed words of a record.
struct Collector : PassingIo {
  Properties &properties;

  template <class Named, class Item, class Holder, class Count, class... Rest>
  int array(Named, std::vector<Item> Holder::*, Count, const Rest &...) {
    add(properties, std::string(Named::name()),
        isPacked<Named, Item, Count>() ? reference("base64") : arrayOf(slotSchema(itemSlot<Item>(Named::TEXT.text))));
    return 1;
  }
  template <class... Arguments> int pairs(const Arguments &...all) { return array(all...); }

  template <class Form, class Item, class Holder, class Count> int records(Form, std::vector<Item> Holder::*, Count) {
    const std::string records = arrayOf(recordSchema<Form::words, Item>(Form::bytes));
    add(properties, std::string(Form::name()),
        canHaveWordsAlone<Item>() ? either(records, rowsSchema(storedSlots<Form::words>(Form::bytes))) : records);
    return 1;
  }
  template <class... Arguments> int run(const Arguments &...all) { return records(all...); }
  template <class Form, class Item, class Holder> int inner(Form, Item Holder::*) {
    add(properties, std::string(Form::name()), recordSchema<Form::words, Item>(Form::bytes));
    return 1;
  }

  int blocks() {
    add(properties, "van", arrayOf(reference("word")));
    add(properties, "usr", arrayOf(reference("word")));
    return 1;
  }
  template <class Member> int blocksAround(Member) { return blocks(); }
  template <class Form, class Ext, class Holder> int blocks(Form, std::unique_ptr<Ext> Holder::*) {
    add(properties, "ext", recordSchema<Form::words, Ext>(Form::bytes));
    return blocks();
  }
  template <class Member> int refs(Member) {
    const std::string words = arrayOf(reference("word"));
    for (const RefWords &ref : REFS) {
      add(properties, ref.key_num, reference("word"));
      add(properties, ref.key, words);
      add(properties, ref.group_index, either(reference("word"), words));
    }
    return 1;
  }
  template <class Member> int data(Member) {
    std::string kinds = arrayOf(reference("word"));
    eachCollData([&]<class Data>(Data) { kinds += ',' + recordSchema<WORDS<Data>, Data>(sizeof(Data)); });
    add(properties, "data", R"({"anyOf":[)" + kinds + "]}");
    return 1;
  }
  template <class Member> int texels(Member, std::uint64_t) {
    add(properties, "texel", reference("base64"));
    return 1;
  }
  template <class Member> int text(Member, std::uint64_t) {
    add(properties, "text", R"({"type":"string"})");
    return 1;
  }
  Word tiles() const { return 1; }
};

/// The schema of a record in all of its forms.
/// @param properties those that it has besides
template <const auto &TABLE, class Record> std::string recordSchema(std::size_t fixed, Properties properties) {
  const std::span<const Slot> slots = storedSlots<TABLE>(fixed);
  addSlots(properties, slots);
  Collector collector{{}, properties};
  goOverForms<Record>(collector, slots);
  return objectOf(properties, requiredOf(slots));
}

std::string schemaOfDocuments() {
  Properties document = {{"kbjson", R"({"const":1})"}};
  Properties header;
  addSlots(header, SLOTS<WORDS<FileHeaderHead>>);
  addSlots(header, SLOTS<WORDS<Version2Sizes>>);
  for (const char *const block : {"van", "usr"})
    add(header, block, arrayOf(reference("word")));
  add(header, "blocks", reference("raw"));
  add(document, "FileHeader", objectOf(header, {"\"version\""}));
  eachList([&](const auto &row) {
    using List = std::remove_cvref_t<decltype(Kis().*row.list)>;
    const Properties besides = {{"behind", reference("raw")}};
    add(document, row.name,
        either(reference("raw"),
               recordSchema<ListFormat<List>::words, List>(sizeof(typename ListFormat<List>::Head), besides)));
  });
  add(document, "behind", reference("raw"));
  add(document, "file", reference("raw"));
  std::string schema = objectOf(document);
  schema.pop_back();
  const std::string pattern = R"({"type":"string","pattern":"^(0x[0-9a-fA-F]{1,8}|nan:[0-9a-fA-F]{8})$"})";
  schema +=
      R"(,
"$schema":"https://json-schema.org/draft/2020-12/schema",
"title":"A KOVA scene, as kbjson prints and reads it",
"$defs":{
"word":)" +
      either(R"({"type":"integer","minimum":-2147483648,"maximum":4294967295})", pattern) +
      ",\n\"float\":" + either(R"({"type":"number"})", pattern) + R"(,
"base64":{"type":"string","contentEncoding":"base64","pattern":"^[A-Za-z0-9+/]*={0,2}$"},
"raw":)" +
      objectOf({{"raw", reference("base64")}, {"offset", R"({"type":"integer"})"}, {"finding", R"({"type":"string"})"}},
               {"\"raw\""}) +
      "}}\n";
  return schema;
}

} // namespace

} // namespace kova::json

/// Usage: kbjson_schema FILE
int main(int argc, char **argv) {
  const std::string schema = kova::json::schemaOfDocuments();
  const std::span bytes(reinterpret_cast<const unsigned char *>(schema.data()), schema.size());
  return argc == 2 && kova::kvSaveBytes(bytes, argv[1], kova::Existing::replace, 0666) ? 0 : 1;
}
