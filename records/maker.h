/// Maker blocks of a 2.0 file: what is decoded of one, as words again.
#pragma once

#include "format/content.h"
#include "records/slots.h"

namespace kova {

/// Appends what follows the fixed words of a decoded maker block.
template <class Ext> struct Encoder : PassingIo {
  const Ext &ext;
  Words &words;

  template <class Text, class Item, class Holder, class... Rest>
  int array(Text, std::vector<Item> Holder::*member, const Rest &...) {
    for (const Item &item : ext.*member)
      for (std::size_t word = 0; word < sizeof(Item) / sizeof(Word); ++word)
        words.push_back(wordIn(item, word));
    return 1;
  }
  template <class... Arguments> int run(const Arguments &...all) { return array(all...); }
  template <class Text, class Item, class Holder, class... Rest>
  int pairs(Text, std::vector<Item> Holder::*member, const Rest &...) {
    for (std::size_t word = 0; word < sizeof(Item) / sizeof(Word); ++word)
      for (const Item &item : ext.*member)
        words.push_back(wordIn(item, word));
    return 1;
  }
  Word tiles() const { return 1; } // what is held counts
};

/// @return the words of a maker block as far as it is decoded.
template <class Head, class Ext> Words encoded(const Ext &ext) {
  Words words;
  const Head &head = ext;
  for (std::size_t word = 0; word < sizeof(Head) / sizeof(Word); ++word)
    words.push_back(wordIn(head, word));
  Encoder<Ext> encoder{{}, ext, words};
  content(encoder, head);
  return words;
}

} // namespace kova
