#include "diff/names.h"

#include "diff/fields.h"
#include "records/forms.h"

#include <set>
#include <string>

namespace kova::diff {

namespace {

using Names = std::set<std::string, std::less<>>;

/// Adds the names of words, and those of their members: "translate.x" and "translate".
void addFields(Names &names, Fields fields) {
  for (const Field &field : fields) {
    const std::string_view name = field.name;
    names.emplace(name);
    names.emplace(name.substr(0, name.find_first_of(".[")));
  }
}

template <const auto &TABLE, class Record> void addRecord(Names &names, std::size_t fixed);

/// Collects the names of what follows the fixed words of a record, as `Taker` calls it.
struct Collector : PassingIo {
  Names &names;

  template <class Named, class Item, class Holder, class Count, class... Rest>
  int array(Named, std::vector<Item> Holder::*, Count, const Rest &...) {
    names.emplace(Named::name());
    addFields(names, ENTRY_FIELDS<Item, Named>);
    return 1;
  }
  template <class... Arguments> int pairs(const Arguments &...all) { return array(all...); }
  template <class Form, class Item> int record() {
    names.emplace(Form::name());
    addRecord<Form::words, Item>(names, Form::bytes);
    return 1;
  }
  template <class Form, class Item, class Holder, class Count> int records(Form, std::vector<Item> Holder::*, Count) {
    return record<Form, Item>();
  }
  template <class... Arguments> int run(const Arguments &...all) { return records(all...); }
  template <class Form, class Item, class Holder> int inner(Form, Item Holder::*) { return record<Form, Item>(); }
  int blocks() {
    names.insert({"van", "usr"});
    return 1;
  }
  template <class Member> int blocksAround(Member) { return blocks(); }
  template <class Form, class Ext, class Holder> int blocks(Form, std::unique_ptr<Ext> Holder::*) {
    names.emplace("ext");
    addRecord<Form::words, Ext>(names, Form::bytes);
    return blocks();
  }
  template <class Member> int refs(Member) {
    for (const RefWords &ref : REFS)
      names.insert({ref.key_num, ref.key, ref.group_index});
    return 1;
  }
  template <class Member> int data(Member) {
    names.emplace("data");
    eachCollData([&]<class Data>(Data) { addFields(names, FIELDS<WORDS<Data>>); });
    return 1;
  }
  template <class Member> int texels(Member, std::uint64_t) { return names.emplace("texel"), 1; }
  template <class Member> int text(Member, std::uint64_t) { return names.emplace("text"), 1; }
  Word tiles() const { return 1; }
};

template <const auto &TABLE, class Record> void addRecord(Names &names, std::size_t fixed) {
  addFields(names, Fields(FIELDS<TABLE>).first(fixed / sizeof(Word)));
  Collector collector{{}, names};
  goOverForms<Record>(collector, storedSlots<TABLE>(fixed));
}

Names allNames() {
  Names names = {"van", "usr"}; // of the header
  addFields(names, FIELDS<WORDS<FileHeaderHead>>);
  addFields(names, FIELDS<WORDS<Version2Sizes>>);
  eachList([&](const auto &row) {
    using List = std::remove_cvref_t<decltype(Kis().*row.list)>;
    addRecord<ListFormat<List>::words, List>(names, sizeof(typename ListFormat<List>::Head));
  });
  return names;
}

} // namespace

bool isFieldName(std::string_view name) {
  static const Names NAMES = allNames();
  return !name.empty() && NAMES.contains(name);
}

} // namespace kova::diff
