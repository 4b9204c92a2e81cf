/// The findings of the deep checks.
#pragma once

#include "kova/findings.h"

#include <iterator>

namespace kova::survey::deep {

constexpr FindingRow warning(const char *id, const char *format, const char *meaning, const char *next_step) {
  return {id, Stage::check, Severity::warning, format, meaning, next_step};
}

/// All links have this text: the element, the field, its value, the target and the number of elements there.
inline constexpr const char *LINK_FORMAT = "WARN : %s : %s = %d, but %s has %d\n";
inline constexpr const char *LINK_NEXT_STEP =
    "Correct the index in the program that wrote the file; -1 stands for none.";

/// The rows of the others.
enum : std::size_t {
  floatNotFinite,
  keysOutOfOrder,
  objectParent,
  objectTwiceChild,
  objectCircle,
  nameControlByte,
  ROW_NUM
};

inline constexpr FindingRow OTHER_ROWS[] = {
    warning("float-not-finite", "WARN : %s : %s is not a finite number\n",
            "A float is infinite or not a number, so what is computed from it is, too.",
            "Look for a division by zero in the program that wrote the file."),
    warning("keys-out-of-order", "WARN : %s : %s : key %d behind key %d\n",
            "Keyframes do not stand in the order of their keys, so a search for the frame can fail.",
            "Sort the keys, together with what belongs to them, before the file is written."),
    warning("object-parent", "WARN : %s : its parent is %d, but it is a child of %d\n",
            "The parent that an object names and the object that has it as a child are not the same; -1: none.",
            "Write the parent link and the child links of the tree from one source."),
    warning("object-twice-child", "WARN : %s : a child of %d, and again of %d\n",
            "An object is a child twice, so it is drawn twice or moved by two parents.",
            "Make a second object, or remove one of the child links."),
    warning("object-circle", "WARN : %s is its own ancestor\n",
            "The parent links form a circle, so a program that follows them does not come to an end.",
            "Correct the parent links; the top of a tree has -1."),
    warning("name-control-byte", "WARN : %s : control byte %0#10x in the name\n",
            "A name contains a control byte, which can change what a terminal or a log shows.",
            "Rename it in the program that wrote the file."),
};
static_assert(std::size(OTHER_ROWS) == ROW_NUM, "a row for each number");

} // namespace kova::survey::deep
