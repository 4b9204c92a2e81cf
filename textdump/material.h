/// The writers of materials, textures and texture images.
#pragma once

#include "format/material.h"
#include "textdump/lines.h"

namespace kova {

/// Opener, header lines and size table.
void kvWriteKtMatListFix1(Text &text, const MatList &list);
void kvWriteKtTexListFix1(Text &text, const TexList &list);
void kvWriteKtTeximgListFix1(Text &text, const TeximgList &list);

/// Heading, fields and arrays of one element, without its blocks. The last row of texels has no line end.
void kvWriteKtMatFix1(Text &text, const Mat &mat, Index number);
void kvWriteKtTexFix1(Text &text, const Tex &tex, Index number);
void kvWriteKtTeximgFix1(Text &text, const Teximg &image, Index number);

} // namespace kova
