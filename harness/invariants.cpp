#include "harness/invariants.h"

#include "format/all.h"

#include <algorithm>

namespace kova::harness {

namespace {

/// The place that is looked at, and what was found.
struct Walk {
  std::string place = "FileHeader";
  std::string broken = {};
  bool last = true; ///< whether the element may be one at which reading ended
};

void demand(Walk &walk, bool holds, std::string_view what) {
  if (!holds)
    walk.broken.append(walk.place).append(": ").append(what).append("\n");
}

/// An array that holds at most as much as its count says.
template <class Array> void atMost(Walk &walk, std::uint64_t count, const Array &held) {
  if (held.size() > count)
    demand(walk, false, std::to_string(held.size()) + " held of " + std::to_string(count));
}

/// An array that is all or, where reading ended, nothing.
template <class Array> void whole(Walk &walk, std::uint64_t count, const Array &held) {
  if (held.size() != count && !(walk.last && held.empty()))
    demand(walk, false, "an array of " + std::to_string(held.size()) + " for " + std::to_string(count));
}

template <class Sizes> void blocks(Walk &walk, const ExtBlk &blk, const Sizes &sizes) {
  atMost(walk, sizes.van_ext_blk_size / sizeof(Word), vanExtBlk(blk));
  atMost(walk, sizes.usr_ext_blk_size / sizeof(Word), usrExtBlk(blk));
}

// --- Forms of which a record has one: the others are empty ----------------------------------------------------------

template <class Record> void otherForms(Walk &, const Record &) {}

void otherForms(Walk &walk, const Light &light) {
  const bool stores = light.light_type <= 1;
  demand(walk, stores ? light.zeroed_dir_light_num == 0 : light.dir_light.empty(), "two forms of directional lights");
}

void otherForms(Walk &walk, const AnimGroup &group) {
  const bool step = group.type == 0 || group.type == 2, keyframe = group.type == 3, node = group.type == 4;
  demand(walk, step || group.step.empty(), "records of type 0 or 2");
  demand(walk, keyframe || group.keyframe.empty(), "records of type 3");
  demand(walk, node || group.node.empty(), "records of type 4");
  demand(walk, !(step || keyframe || node) || group.zeroed_anim_num == 0, "zeroed records");
}

void otherForms(Walk &walk, const Tex &tex) {
  const TexTilesHead &tiles = tex.tiles;
  demand(walk,
         tex.tex_anim != 0 || (tiles.tex_tile_scale_num | tiles.tex_tile_offset_num | tiles.tex_tile_img_num) == 0,
         "tiles of a still texture");
}

void otherForms(Walk &walk, const CollGroup &group) {
  demand(walk, !group.coll.empty() || !group.ext_blk.words, "blocks without a collision");
}

void reference(Walk &walk, const TriGroup &group, std::size_t kind) {
  const AnimRef ref = kvRefs(group)[kind];
  const RefForm form = refForm(group.tri_anim_type, kind);
  const Word keys = form == RefForm::keys ? ref.key_num : 0;
  demand(walk, ref.key_num == keys, "a key count without keys");
  whole(walk, keys, ref.key);
  whole(walk, form == RefForm::frames ? framesOf(group) : form == RefForm::keys ? keys : 1, ref.group_index);
}

// --- Going over the records -----------------------------------------------------------------------------------------

/// Of a decoded maker block, which may be cut anywhere.
template <class Ext, class Around> struct MakerWalk : PassingIo {
  Walk &walk;
  const Ext &ext;
  const Around &around;

  template <class Text, class Array, class Holder, class Count, class... Target>
  int array(Text, Array Holder::*member, Count count, Target...) {
    atMost(walk, numberOf(ext, count), ext.*member);
    return 1;
  }
  template <class... Arguments> int pairs(const Arguments &...all) { return array(all...); }
  template <class... Arguments> int run(const Arguments &...all) { return array(all...); }
  Word tiles() const { return kvCiTileNum(around); }
};

/// Of a record of the model, or of a list.
template <class Record, class Around = Record> struct RecordWalk : PassingIo {
  Walk &walk;
  const Record &record;
  const Around &around;

  template <class Text, class Array, class Holder, class Count, class... Target>
  int array(Text, Array Holder::*member, Count count, Target...) {
    whole(walk, numberOf(record, count), record.*member);
    return 1;
  }
  template <class... Arguments> int pairs(const Arguments &...all) { return array(all...); }
  template <class... Arguments> int run(const Arguments &...all) { return array(all...); }
  template <class Array, class Holder> int texels(Array Holder::*member, std::uint64_t count) {
    return array(0, member, count);
  }
  template <class Array, class Holder> int text(Array Holder::*member, std::uint64_t count) {
    return array(0, member, count);
  }

  /// Those of a list, where a failed read can end at any element, and those inside a record, which are all there but
  /// in the last element.
  template <class Form, class Item, class Holder, class Count>
  int records(Form form, std::vector<Item> Holder::*member, Count count) {
    const std::vector<Item> &held = record.*member;
    atMost(walk, numberOf(record, count), held);
    demand(walk, held.size() == numberOf(record, count) || walk.last, "fewer records than counted");
    const std::string place = walk.place;
    const bool last = walk.last;
    for (const Item &item : held) {
      walk.place = place + "." + std::string(form.kind()) + "[" + std::to_string(&item - held.data()) + "]";
      walk.last = last && &item == &held.back();
      go(form, item);
    }
    walk.place = place;
    walk.last = last;
    return 1;
  }
  template <class Form, class Item, class Holder> int inner(Form form, Item Holder::*member) {
    go(form, record.*member);
    return 1;
  }

  int blocks() {
    harness::blocks(walk, record.ext_blk, record);
    return 1;
  }
  template <class Form, class Ext, class Holder> int blocks(Form, std::unique_ptr<Ext> Holder::*member) {
    if (const Ext *const ext = (record.*member).get()) {
      demand(walk, record.van_ext_blk_size != 0, "decoded without a block");
      MakerWalk<Ext, Record> maker_walk{{}, walk, *ext, record};
      const typename Form::Head &head = *ext;
      content(maker_walk, head);
    }
    return blocks();
  }
  template <class Holder> int blocksAround(ExtBlk Holder::*member) {
    harness::blocks(walk, record.*member, around);
    return 1;
  }
  template <class Text, class Holder, class Count> int absent(Text, Word Holder::*member, Count count) {
    demand(walk, record.*member == 0 || record.*member == numberOf(record, count), "zeroed records");
    return 1;
  }
  template <class Holder> int refs(std::unique_ptr<Index[]> Holder::*) {
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
      reference(walk, record, kind);
    return 1;
  }

private:
  template <class Form, class Item> void go(Form, const Item &item) {
    RecordWalk<Item, Record> inside{{}, walk, item, record};
    const typename Form::Head &head = item;
    content(inside, head);
    otherForms(walk, item);
  }
};

} // namespace

std::string brokenInvariants(const Kis &kis) {
  Walk walk;
  blocks(walk, kis.file_header.ext_blk, kis.file_header);
  eachList([&](const auto &row) {
    using List = std::remove_cvref_t<decltype(kis.*row.list)>;
    const List &list = kis.*row.list;
    walk.place = row.name;
    RecordWalk<List> io{{}, walk, list, list};
    ListFormat<List>::content(io, list);
  });
  return walk.broken;
}

} // namespace kova::harness
