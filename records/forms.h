/// Going over what a record can hold, without a file.
#pragma once

#include "records/derive.h"

namespace kova {

/// Goes over what follows the fixed words of a record, in all of its forms: every flag is given the values that choose
/// one.
template <class Record, class Io> void goOverForms(Io &io, std::span<const Slot> slots) {
  constexpr Word FORMS = 6;
  Record record{};
  for (const Slot &slot : slots) {
    for (Word value = 1; slot.role == Role::plain && slot.words == 1 && slot.hex != 0 && value < FORMS; ++value) {
      setWordIn(record, slot.first, value);
      goOver(io, record);
    }
    setWordIn(record, slot.first, 0);
  }
  goOver(io, record);
}

/// Calls `visit` with an empty record of each kind of the data of a collision.
template <class Visit> void eachCollData(Visit visit) {
  constexpr Index KINDS = 0x100;
  Coll coll{};
  for (Index kind = 0; kind < KINDS; ++kind) {
    coll.coll_type = static_cast<decltype(coll.coll_type)>(kind);
    withCollData(coll, visit);
  }
}

} // namespace kova
