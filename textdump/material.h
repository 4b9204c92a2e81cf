/// The writers of materials, textures and texture images.
#pragma once

#include "format/material.h"
#include "textdump/lines.h"

namespace kova {

/// Opener, header lines and size table.

/// Heading, fields and arrays of one element, without its blocks. The last row of texels has no line end.
void kvWriteKtTexFix1(Text &text, const Tex &tex, Index number);
void kvWriteKtTeximgFix1(Text &text, const Teximg &image, Index number);

} // namespace kova
