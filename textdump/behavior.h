/// The writers of animation, collision, switches and names.
#pragma once

#include "format/behavior.h"
#include "textdump/lines.h"

namespace kova {

/// Opener, header lines and size table; of names without the opener, which the section prints.
void kvWriteKtNameListFix1(Text &text, const NameList &list);

/// Heading, fields, arrays and sub-records of one element, without its blocks.
void kvWriteKtCollGroupFix1(Text &text, const CollGroup &group, Index number);

} // namespace kova
