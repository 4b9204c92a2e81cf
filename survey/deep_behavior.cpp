#include "survey/deep_check.h"

#include "common/text.h"

namespace kova::survey::deep {

namespace {

/// A collision can be shorter than its kind; what follows in its words is the next record.
template <class Data> void checkCollisionData(Check &check, const Coll &coll, const Place &place) {
  checkRecord(check, collData<Data>(coll), place, Word{coll.coll_size - coll.coll_header_size});
}

void checkCollisions(Check &check, const CollGroup &group, const Place &place) {
  const Place inside = {place.list, place.element};
  for (const Coll &coll : group.coll) {
    checkRecord(check, coll, inside);
    switch (coll.coll_type) {
    case 0x10:
      checkCollisionData<CollTerrain>(check, coll, inside);
      break;
    case 0x20:
      checkCollisionData<CollPoint>(check, coll, inside);
      break;
    case 0x21:
      checkCollisionData<CollCircle>(check, coll, inside);
      break;
    case 0x22:
      checkCollisionData<CollSphere>(check, coll, inside);
      break;
    case 0x23:
      checkCollisionData<CollCylinder>(check, coll, inside);
      break;
    case 0x24:
      checkCollisionData<CollBox>(check, coll, inside);
      break;
    default: // has no data that is known
      break;
    }
  }
}

} // namespace

/// Reports the first control byte of each name.
void checkNames(Check &check, const char *list, const std::vector<Name> &names) {
  Place place = {list, 0};
  for (const Name &name : names) {
    place.offset = name.offset;
    const std::string text = kvGetName(name);
    if (const std::size_t at = controlByte(text); at != text.npos) {
      const Word byte = static_cast<unsigned char>(text[at]);
      say<nameControlByte>(check, after(place, sizeof(NameHead) + at), {byte}, byte);
    }
    ++*place.element;
  }
}

void checkBehaviorLists(Check &check, const Kis &kis) {
  checkList(check, "AnimList", kis.anim.element);
  checkList(check, "CollList", kis.coll.element,
            [&](const CollGroup &group, const Place &place) { checkCollisions(check, group, place); });
  checkList(check, "SwitchList", kis.switch_.element);
  checkNames(check, "NameList", kis.name.element);
}

} // namespace kova::survey::deep
