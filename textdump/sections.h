/// The sections of the dump, one for each list of a file.
#pragma once

#include "kova/kova.h"

namespace kova {

struct Text;

// In a 1.0 dump.

void kvWriteKtSceneList1(Text &text, const Scene &scene);
void kvWriteKtEnvList1(Text &text, const EnvList &list);
void kvWriteKtCamList1(Text &text, const CamList &list);
void kvWriteKtLightList1(Text &text, const LightList &list);
void kvWriteKtObjList1(Text &text, const ObjList &list);
void kvWriteKtShapeList1(Text &text, const ShapeList &list);
void kvWriteKtVtxList1(Text &text, const VtxList &list);
void kvWriteKtTriList1(Text &text, const TriList &list);
void kvWriteKtColorList1(Text &text, const ColorList &list);
void kvWriteKtVectorList1(Text &text, const VectorList &list);
void kvWriteKtStList1(Text &text, const StList &list);
void kvWriteKtPartList1(Text &text, const PartList &list);
void kvWriteKtMatList1(Text &text, const MatList &list);
void kvWriteKtTexList1(Text &text, const TexList &list);
void kvWriteKtTeximgList1(Text &text, const TeximgList &list);
void kvWriteKtAnimList1(Text &text, const AnimList &list);
void kvWriteKtCollList1(Text &text, const CollList &list);
void kvWriteKtSwitchList1(Text &text, const SwitchList &list);
void kvWriteKtNameList1(Text &text, const NameList &list);

// In a 2.0 dump. Those of the scene, cameras, objects, shapes, materials, textures, texture images and animation show
// the decoded maker blocks of their records; the others of version 1.0 look as in a 1.0 dump.

void kvWriteKtSceneList(Text &text, const Scene &scene);
void kvWriteKtEnvList(Text &text, const EnvList &list);
void kvWriteKtCamList(Text &text, const CamList &list);
void kvWriteKtLightList(Text &text, const LightList &list);
void kvWriteKtObjList(Text &text, const ObjList &list);
void kvWriteKtShapeList(Text &text, const ShapeList &list);
void kvWriteKtVtxList(Text &text, const VtxList &list);
void kvWriteKtTriList(Text &text, const TriList &list);
void kvWriteKtColorList(Text &text, const ColorList &list);
void kvWriteKtVectorList(Text &text, const VectorList &list);
void kvWriteKtStList(Text &text, const StList &list);
void kvWriteKtPartList(Text &text, const PartList &list);
void kvWriteKtMatList(Text &text, const MatList &list);
void kvWriteKtTexList(Text &text, const TexList &list);
void kvWriteKtTeximgList(Text &text, const TeximgList &list);
void kvWriteKtAnimList(Text &text, const AnimList &list);
void kvWriteKtCollList(Text &text, const CollList &list);
void kvWriteKtSwitchList(Text &text, const SwitchList &list);
void kvWriteKtNameList(Text &text, const NameList &list);

/// As the section of the names, under its own opener and closer.
void kvWriteKtExternalNameList(Text &text, const ExternalNameList &list);

} // namespace kova
