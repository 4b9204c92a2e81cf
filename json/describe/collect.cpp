/// Goes over `format/` and notes what it says.
#include "format/versions.h"
#include "records/derive.h"
#include "json/describe/record.h"

#include <algorithm>

namespace kova::describe {

namespace {

/// Numbers of items that no count says; functions of the library compute them.
template <class Head> constexpr const char *NUMBER = "";
template <>
constexpr const char *NUMBER<TeximgHead> = "tex_img_size - tex_img_header_size - van_ext_blk_size - usr_ext_blk_size";
template <> constexpr const char *NUMBER<CiImgHead> = "(ci_img_width * ci_img_height * ci_img_pixel_depth + 31) / 32";
template <>
constexpr const char *NUMBER<NameHead> =
    "name_size < name_header_size ? 0 : (name_size - name_header_size) / 4 * 4"; // bytes, of whole words
template <>
constexpr const char *NUMBER<TexExtHead> =
    "_parent._parent.tex_anim == 0 ? 1 : _parent._parent.tiles.tex_tile_img_num"; // of its tiles

struct Records {
  std::vector<Record> all;

  /// @return the name that a record gets: one with other fields has another name.
  std::string add(const std::string &name, const std::vector<Field> &fields) {
    for (int number = 1;; ++number) {
      const std::string tried = number == 1 ? name : name + '_' + std::to_string(number);
      const auto found =
          std::find_if(all.begin(), all.end(), [&](const Record &record) { return record.name == tried; });
      if (found != all.end() && found->fields != fields)
        continue;
      if (found == all.end())
        all.push_back({tried, fields});
      return tried;
    }
  }
};

constexpr const char *nameOf(Kind kind) { return kind == Kind::real ? "real" : kind == Kind::index ? "index" : "word"; }

// --- Fixed words ----------------------------------------------------------------------------------------------------

/// @return the type of an item of words with names.
std::string typeOf(Records &known, std::span<const Kind> kinds, std::span<const char *const> parts) {
  std::vector<Field> fields;
  std::string name;
  for (std::size_t part = 0; part < parts.size(); ++part) {
    fields.push_back({parts[part], nameOf(kinds[part])});
    name.append(part == 0 ? "" : "_").append(parts[part]);
  }
  return parts.empty() ? nameOf(kinds[0]) : known.add(name, fields);
}

/// Adds the fields of a table of words, as far as they have slots.
void addRows(Records &known, std::vector<Field> &fields, std::span<const WordRow> rows, std::span<const Slot> &slots) {
  for (const WordRow &row : rows) {
    for (std::size_t i = 0; !row.inner.empty() && i < row.count; ++i)
      addRows(known, fields, row.inner, slots);
    if (!row.inner.empty() || slots.empty())
      continue;
    const bool numbered = row.words > 1 && row.parts.empty();
    fields.push_back(
        {plainName(slots.front().key), typeOf(known, row.kinds, row.parts), numbered ? std::to_string(row.words) : ""});
    slots = slots.subspan(1);
  }
}

template <const auto &TABLE> std::vector<Field> fixedFields(Records &known, std::size_t bytes) {
  std::vector<Field> fields;
  std::span<const Slot> slots = storedSlots<TABLE>(bytes);
  addRows(known, fields, TABLE, slots);
  return fields;
}

/// @return when a file has what version 2.0 has added. @param header where the words of the header are
std::string version2Condition(const std::string &header) {
  std::string condition;
  for (const VersionRow &row : VERSIONS)
    if (row.version_2)
      condition +=
          (condition.empty() ? "(" : " or ") + ('(' + header) + "version & 0xffff) == " + std::to_string(row.number);
  return condition + ')';
}

/// @return when a maker block is decoded.
std::string decodedCondition() { return version2Condition("_root.file_header.") + " and van_ext_blk_size > 0"; }

// --- Content --------------------------------------------------------------------------------------------------------

template <const auto &TABLE, class Model>
std::string addRecord(Records &known, const std::string &name, std::size_t bytes, bool is_list = false);

/// Notes what follows the fixed words of a record.
template <const auto &TABLE> struct Steps : PassingIo {
  using Head = typename std::remove_cvref_t<decltype(TABLE)>::Record;

  Records &known;
  const std::string &around; ///< the name of the record
  std::size_t fixed;         ///< bytes of its fixed words
  std::vector<Field> fields = {};

  template <class Named, class Item, class Holder, class Count, class... Rest>
  int array(Named, std::vector<Item> Holder::*, Count count, Rest...) {
    if constexpr (sizeof(Item) == sizeof(Word))
      return add(Named::name(), nameOf(KINDS<Item>[0]), count);
    else
      return add(Named::name(), typeOf(known, KINDS<Item>, PARTS<Item>), count);
  }
  /// A run of all first words, a run of all second words and so on.
  template <class Named, class Item, class Holder, class Count, class... Rest>
  int pairs(Named, std::vector<Item> Holder::*, Count count, Rest...) {
    const std::string name = plainName(Named::name()) + '_';
    for (std::size_t part = 0; part < PARTS<Item>.size(); ++part)
      add(name + PARTS<Item>[part], nameOf(KINDS<Item>[part]), count);
    if constexpr (PARTS<Item>.empty())
      for (const Slot &slot : SLOTS<WORDS<Item>>)
        add(name + plainName(slot.key), nameOf(Kind::index), count);
    return 1;
  }

  template <class Form, class Item, class Holder, class Count>
  int records(Form, std::vector<Item> Holder::*, Count count) {
    return add(Form::name(), typeOfForm<Form, Item>(), count);
  }
  template <class... Arguments> int run(const Arguments &...all) { return records(all...); }
  template <class Form, class Item, class Holder> int inner(Form, Item Holder::*) {
    fields.push_back({plainName(Form::name()), typeOfForm<Form, Item>()});
    return 1;
  }

  int blocks() { return blocksOf(""); }
  template <class Member> int blocksAround(Member) { return blocksOf("_parent."); }
  template <class Form, class Ext, class Holder> int blocks(Form, std::unique_ptr<Ext> Holder::*) {
    const std::string name = around + "_maker";
    const std::string ext = addRecord<Form::words, Ext>(known, around + "_ext", Form::bytes);
    fields.push_back({"maker", known.add(name, {{"ext", ext}, {"van", "word", TO_THE_END}}), "", decodedCondition(),
                      "van_ext_blk_size"});
    blocks();
    fields.end()[-2].condition = "not (" + decodedCondition() + ')';
    return 1;
  }
  template <class Holder> int header(Word Holder::*size) {
    fields.push_back({"gap", "byte", nameOf(size) + " - " + std::to_string(fixed)});
    return 1;
  }

  template <class Member> int refs(Member) {
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
      const std::string bits = "((tri_anim_type >> " + std::to_string(4 * kind) + ") & 3)";
      const RefWords &ref = REFS[kind];
      fields.push_back({ref.key_num, "index", "", bits + " == 2"});
      fields.push_back({ref.key, "index", ref.key_num, bits + " == 2"});
      fields.push_back({ref.group_index, "index",
                        bits + " == 0 ? 1 : " + bits + " == 2 ? " + ref.key_num + " : tri_anim_frame_num + 1"});
    }
    return 1;
  }
  template <class Member> int data(Member) {
    Field field = {
        "data",     known.add("words", {{"word", "word", TO_THE_END}}), "", "", "coll_size - coll_header_size",
        "coll_type"};
    Coll coll{};
    for (; coll.coll_type < 0x100; ++coll.coll_type)
      withCollData(coll, [&]<class Data>(Data) {
        field.cases.emplace_back(coll.coll_type, addRecord<WORDS<Data>, Data>(known, "coll_data", sizeof(Data)));
      });
    fields.push_back(field);
    return 1;
  }
  template <class Member> int texels(Member, std::uint64_t count) { return add("texel", "byte", count); }
  template <class Member> int text(Member, std::uint64_t count) { return add("text", "byte", count); }
  Word tiles() const { return 1; }

private:
  template <class Count> int add(std::string_view name, const std::string &type, Count count) {
    if constexpr (std::is_integral_v<Count>)
      if (std::is_same_v<Head, TexExtHead> && count == 0) // without a palette
        return 1;
    fields.push_back({plainName(name), type, numberText(count)});
    return 1;
  }
  template <class Form, class Item> std::string typeOfForm() {
    const std::string kind = plainName(Form::kind());
    const bool is_element = !kind.empty() && around.ends_with("_list");
    return addRecord<Form::words, Item>(known, is_element ? kind : around + '_' + plainName(Form::name()), Form::bytes);
  }
  int blocksOf(const std::string &place) {
    fields.push_back({"van", "word", place + "van_ext_blk_size / 4"});
    fields.push_back({"usr", "word", place + "usr_ext_blk_size / 4"});
    return 1;
  }
  template <class Holder> static std::string nameOf(Word Holder::*word) {
    const std::size_t at = wordOf<Head>(word);
    for (const Slot &slot : SLOTS<TABLE>)
      if (slot.first == at)
        return plainName(slot.key);
    throw "no such word";
  }
  static const char *nameOf(Kind kind) { return describe::nameOf(kind); }
  template <class Holder> static std::string numberText(Word Holder::*count) { return nameOf(count); }
  template <class Holder> static std::string numberText(const Sum<Holder> &count) {
    return nameOf(count.first) + " + " + nameOf(count.second);
  }
  template <class Holder> static std::string numberText(const Half<Holder> &count) {
    return nameOf(count.number) + " / 2";
  }
  static std::string numberText(std::uint64_t) { return NUMBER<Head>; }
};

// --- Forms ----------------------------------------------------------------------------------------------------------

/// A form of a record, and the values of a word that choose it.
struct Form {
  std::vector<Field> fields;
  std::vector<Word> values;
};

/// @return when a word chooses a form: of the last one, when it chooses none of the others.
std::string conditionOf(const std::string &word, const std::vector<Form> &forms, std::size_t form) {
  const bool is_last = form + 1 == forms.size();
  std::string condition;
  for (std::size_t other = 0; other < forms.size(); ++other)
    if (is_last ? other != form : other == form)
      for (const Word value : forms[other].values)
        condition += (condition.empty() ? ""
                      : is_last         ? " and "
                                        : " or ") +
                     word + (is_last ? " != " : " == ") + std::to_string(value);
  return condition;
}

/// Appends the fields of all forms: those that all of them begin or end with once, the others where their form is
/// chosen. Two of the same name are one, whose type is chosen.
void appendForms(std::vector<Field> &fields, const std::string &word, std::vector<Form> forms) {
  std::vector<Field> end;
  const auto same = [&](auto get) {
    return std::all_of(forms.begin(), forms.end(), [&](const Form &form) {
      return !form.fields.empty() && get(form.fields) == get(forms[0].fields);
    });
  };
  for (; same([](const auto &all) { return all.front(); }); fields.push_back(end.front()), end.clear())
    for (Form &form : forms) {
      end.assign(1, form.fields.front());
      form.fields.erase(form.fields.begin());
    }
  for (; same([](const auto &all) { return all.back(); });) {
    end.insert(end.begin(), forms[0].fields.back());
    for (Form &form : forms)
      form.fields.pop_back();
  }
  const std::size_t first = fields.size();
  for (std::size_t form = 0; form < forms.size(); ++form)
    for (Field &field : forms[form].fields) {
      const std::string condition = conditionOf(word, forms, form);
      const auto known = std::find_if(fields.begin() + static_cast<std::ptrdiff_t>(first), fields.end(),
                                      [&](const Field &other) { return other.name == field.name; });
      if (known == fields.end()) {
        fields.push_back(field);
        fields.back().condition = condition;
        for (const Word value : forms[form].values)
          fields.back().cases.emplace_back(value, field.type);
        continue;
      }
      known->condition += " or " + condition;
      known->chosen_by = word;
      for (const Word value : forms[form].values)
        known->cases.emplace_back(value, field.type);
    }
  for (auto field = fields.begin() + static_cast<std::ptrdiff_t>(first); field != fields.end(); ++field)
    if (field->chosen_by.empty())
      field->cases.clear();
  fields.insert(fields.end(), end.begin(), end.end());
}

template <const auto &TABLE, class Model>
std::vector<Field> stepsOf(Records &known, const std::string &name, std::size_t bytes, const Model &model) {
  Steps<TABLE> steps{{}, known, name, bytes};
  goOver(steps, model);
  return steps.fields;
}

/// Adds a record in all of its forms. A word that chooses the form is a flag, and its first values are told apart.
template <const auto &TABLE, class Model>
std::string addRecord(Records &known, const std::string &name, std::size_t bytes, bool is_list) {
  constexpr Word VALUES = 6;
  std::vector<Field> fields = fixedFields<TABLE>(known, bytes);
  Model model{};
  std::string word;
  std::vector<Form> forms = {{stepsOf<TABLE>(known, name, bytes, model), {0}}};
  for (const Slot &slot : storedSlots<TABLE>(bytes)) {
    std::vector<Form> found = {{forms[0].fields, {0}}};
    for (Word value = 1; slot.role == Role::plain && slot.words == 1 && slot.hex != 0 && value < VALUES; ++value) {
      setWordIn(model, slot.first, value);
      const std::vector<Field> steps = stepsOf<TABLE>(known, name, bytes, model);
      auto form = std::find_if(found.begin(), found.end(), [&](const Form &other) { return other.fields == steps; });
      if (form == found.end())
        form = found.insert(found.end(), {steps, {}});
      form->values.push_back(value);
    }
    setWordIn(model, slot.first, 0);
    if (found.size() == 1)
      continue;
    if (!word.empty())
      throw "two words choose the form of a record";
    std::sort(found.begin(), found.end(),
              [](const Form &a, const Form &b) { return a.values.back() < b.values.back(); });
    word = plainName(slot.key);
    forms = found;
  }
  appendForms(fields, word, forms);
  if (is_list)
    fields.push_back({"behind", "byte", TO_THE_END});
  return known.add(name, fields);
}

} // namespace

std::string plainName(std::string_view name) {
  std::string plain;
  for (const char character : name) {
    const bool upper = character >= 'A' && character <= 'Z';
    if (upper && !plain.empty() && plain.back() >= 'a' && plain.back() <= 'z')
      plain += '_';
    if (character != '[' && character != ']')
      plain += character == '.' ? '_' : upper ? static_cast<char>(character | 0x20) : character;
  }
  return plain;
}

bool fillsItsBytes(const Record &record) { return !record.fields.empty() && record.fields.back().count == TO_THE_END; }

namespace {

/// @return the name of a word of the header, or of its maker block.
template <class Head> std::string nameIn(Word FileHeader::*word) {
  return plainName(SLOTS<WORDS<Head>>[wordOf<Head>(static_cast<Word Head::*>(word))].key);
}

/// @return when the header has the sizes of the lists of version 2.0.
std::string sizesCondition(const std::string &place) {
  return version2Condition(place) + " and " + place + "van_ext_blk_size >= " + std::to_string(VERSION_2_SIZES_BYTES);
}

std::string addHeader(Records &known) {
  std::vector<Field> sizes = fixedFields<WORDS<Version2Sizes>>(known, sizeof(Version2Sizes));
  sizes.push_back({"van", "word", TO_THE_END});
  std::vector<Field> header = fixedFields<WORDS<FileHeaderHead>>(known, sizeof(FileHeaderHead));
  header.push_back({"maker", known.add("file_header_maker", sizes), "", sizesCondition(""), "van_ext_blk_size"});
  header.push_back({"van", "word", "van_ext_blk_size / 4", "not (" + sizesCondition("") + ')'});
  header.push_back({"usr", "word", "usr_ext_blk_size / 4"});
  return known.add("file_header", header);
}

} // namespace

std::vector<Record> describeFormat() {
  Records known;
  std::vector<Field> file = {{"file_header", addHeader(known)}};
  eachList([&](const auto &row) {
    using List = std::remove_cvref_t<decltype(Kis().*row.list)>;
    using Format = ListFormat<List>;
    const bool is_late = file.size() > VERSION_1_LIST_NUM;
    const std::string size = is_late ? "file_header.maker." + nameIn<Version2Sizes>(row.size)
                                     : "file_header." + nameIn<FileHeaderHead>(row.size);
    const std::string type = addRecord<Format::words, List>(
        known, std::is_same_v<List, NameList> ? "name_list" : plainName(row.name), sizeof(typename Format::Head), true);
    file.push_back({plainName(row.name), type, "",
                    (is_late ? sizesCondition("file_header.") + " and " : "") + size + " > 0", size});
  });
  file.push_back({"behind", "byte", TO_THE_END});
  known.add("kova", file);
  return known.all;
}

} // namespace kova::describe
