/// The writers of animation, collision, switches and names.
#pragma once

#include "format/behavior.h"
#include "textdump/lines.h"

namespace kova {

/// Opener, header lines and size table; of names without the opener, which the section prints.
void kvWriteKtAnimListFix1(Text &text, const AnimList &list);
void kvWriteKtCollListFix1(Text &text, const CollList &list);
void kvWriteKtSwitchListFix1(Text &text, const SwitchList &list);
void kvWriteKtNameListFix1(Text &text, const NameList &list);

/// Heading, fields, arrays and sub-records of one element, without its blocks.
void kvWriteKtAnimGroupFix1(Text &text, const AnimGroup &group, Index number);
void kvWriteKtCollGroupFix1(Text &text, const CollGroup &group, Index number);
void kvWriteKtSwitchFix1(Text &text, const Switch &node, Index number);

} // namespace kova
