/// The list writers: one for each list, in the file of its group. They write what the reader of the list takes, in the
/// order in which it takes it.
#pragma once

#include "kova/kova.h"
#include "writer/output.h"

namespace kova {

void writeSceneList(Output &out, const Scene &scene);
void writeEnvList(Output &out, const EnvList &list);
void writeCamList(Output &out, const CamList &list);
void writeLightList(Output &out, const LightList &list);
void writeObjList(Output &out, const ObjList &list);
void writeShapeList(Output &out, const ShapeList &list);

void writeVtxList(Output &out, const VtxList &list);
void writeTriList(Output &out, const TriList &list);
void writeColorList(Output &out, const ColorList &list);
void writeVectorList(Output &out, const VectorList &list);
void writeStList(Output &out, const StList &list);
void writePartList(Output &out, const PartList &list);

void writeMatList(Output &out, const MatList &list);
void writeTexList(Output &out, const TexList &list);
void writeTeximgList(Output &out, const TeximgList &list);

void writeAnimList(Output &out, const AnimList &list);
void writeCollList(Output &out, const CollList &list);
void writeSwitchList(Output &out, const SwitchList &list);
void writeNameList(Output &out, const NameList &list); ///< of either name list

void writeCiImgList(Output &out, const CiImgList &list);
void writeColorPaletteList(Output &out, const ColorPaletteList &list);

void writeEnvelopeList(Output &out, const EnvelopeList &list);
void writeClusterList(Output &out, const ClusterList &list);
void writeWeightList(Output &out, const WeightList &list);

void writeChainRootList(Output &out, const ChainRootList &list);
void writeJointList(Output &out, const JointList &list);
void writeEffectorList(Output &out, const EffectorList &list);

} // namespace kova
