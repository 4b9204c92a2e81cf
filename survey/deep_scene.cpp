#include "survey/deep_check.h"

namespace kova::survey::deep {

namespace {

/// What the child links say of the objects.
struct Tree {
  std::vector<Word> parent;    ///< who has it as a child, or none
  std::vector<bool> is_broken; ///< whether a child link leads nowhere: it may have been meant for any object
};

Place objectPlace(const std::vector<Obj> &objects, std::size_t number) {
  return {"ObjList", static_cast<Word>(number), objects[number].offset};
}

Tree followChildren(Check &check, const std::vector<Obj> &objects) {
  Tree tree = {std::vector<Word>(objects.size(), NO_LINK), std::vector<bool>(objects.size())};
  for (std::size_t i = 0; i < objects.size(); ++i)
    for (const Word child : objects[i].child_link) {
      const auto parent = static_cast<Word>(i);
      if (child >= objects.size()) {
        tree.is_broken[i] = true;
        continue;
      }
      Word &has_it = tree.parent[child];
      if (has_it != NO_LINK)
        say<objectTwiceChild>(check, objectPlace(objects, child), {}, has_it, parent);
      if (has_it == NO_LINK || objects[child].obj_parent_link == parent) // of two, the one that the child names
        has_it = parent;
    }
  return tree;
}

/// Compares the parents that the objects name with those that have them as children. Links that lead nowhere have
/// findings of their own.
void checkParents(Check &check, const std::vector<Obj> &objects, const Tree &tree) {
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const Word named = objects[i].obj_parent_link, has_it = tree.parent[i];
    const bool leads_nowhere = named >= objects.size() && named != NO_LINK;
    if (named == has_it || leads_nowhere || (has_it == NO_LINK && tree.is_broken[named]))
      continue;
    const Place place = objectPlace(objects, i);
    say<objectParent>(check, after(place, offsetof(ObjHead, obj_parent_link)), {named, has_it}, named, has_it);
  }
}

/// Follows the parent links up from each object, no object twice; a circle is reported once.
void checkCircles(Check &check, const std::vector<Obj> &objects) {
  std::vector<Word> walk(objects.size()); // in which walk an object was met; 0: in none
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const auto number = static_cast<Word>(i + 1);
    std::size_t at = i;
    for (; at < objects.size() && walk[at] == 0; at = objects[at].obj_parent_link)
      walk[at] = number;
    if (at < objects.size() && walk[at] == number)
      say<objectCircle>(check, objectPlace(objects, at), {});
  }
}

} // namespace

void checkTree(Check &check, const std::vector<Obj> &objects) {
  const Tree tree = followChildren(check, objects);
  checkParents(check, objects, tree);
  checkCircles(check, objects);
}

} // namespace kova::survey::deep
