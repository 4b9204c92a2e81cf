/// The writers of vertices, triangles, colours, normals, texture coordinates and parts.
#pragma once

#include "format/geometry.h"
#include "textdump/lines.h"

namespace kova {

/// Opener, header lines and size tables; of vertices, colours, normals and texture coordinates also the groups.
void kvWriteKtVtxListFix1(Text &text, const VtxList &list);
void kvWriteKtTriListFix1(Text &text, const TriList &list);
void kvWriteKtColorListFix1(Text &text, const ColorList &list);
void kvWriteKtVectorListFix1(Text &text, const VectorList &list);
void kvWriteKtStListFix1(Text &text, const StList &list);
void kvWriteKtPartListFix1(Text &text, const PartList &list);

/// Heading, fields and arrays of one element, without its blocks. A triangle group comes with its references and its
/// triangles, blocks of the triangles included.
void kvWriteKtVtxFix1(Text &text, const VtxGroup &group, Index number);
void kvWriteKtTriGroupFix1(Text &text, const TriGroup &group, Index number);
void kvWriteKtTriFix1(Text &text, const Tri &tri, Index number);
void kvWriteKtTriColorFix1(Text &text, const TriColorGroup &group, Index number);
void kvWriteKtVtxColorFix1(Text &text, const VtxColorGroup &group, Index number);
void kvWriteKtTriNvFix1(Text &text, const TriNvGroup &group, Index number);
void kvWriteKtVtxNvFix1(Text &text, const VtxNvGroup &group, Index number);
void kvWriteKtStFix1(Text &text, const StGroup &group, Index number);
void kvWriteKtPartFix1(Text &text, const Part &part, Index number);

} // namespace kova
