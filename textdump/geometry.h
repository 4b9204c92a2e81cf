/// The writers of vertices, triangles, colours, normals, texture coordinates and parts.
#pragma once

#include "format/geometry.h"
#include "textdump/lines.h"

namespace kova {

/// Opener, header lines and size tables; of vertices, colours, normals and texture coordinates also the groups.
void kvWriteKtVtxListFix1(Text &text, const VtxList &list);
void kvWriteKtColorListFix1(Text &text, const ColorList &list);
void kvWriteKtVectorListFix1(Text &text, const VectorList &list);
void kvWriteKtStListFix1(Text &text, const StList &list);

/// Heading, fields and arrays of one element, without its blocks. A triangle group comes with its references and its
/// triangles, blocks of the triangles included.
void kvWriteKtTriGroupFix1(Text &text, const TriGroup &group, Index number);
void kvWriteKtTriFix1(Text &text, const Tri &tri, Index number);

} // namespace kova
