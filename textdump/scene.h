/// The writers of the scene, environments, cameras, lights, objects and shapes.
#pragma once

#include "format/scene.h"
#include "textdump/lines.h"

namespace kova {

/// Opener, header lines and size table; of the scene, opener, fields and links.
void kvWriteKtSceneListFix1(Text &text, const Scene &scene);
void kvWriteKtEnvListFix1(Text &text, const EnvList &list);
void kvWriteKtCamListFix1(Text &text, const CamList &list);
void kvWriteKtLightListFix1(Text &text, const LightList &list);
void kvWriteKtObjListFix1(Text &text, const ObjList &list);
void kvWriteKtShapeListFix1(Text &text, const ShapeList &list);

/// Heading, fields, arrays and sub-records of one element, without its blocks.
void kvWriteKtEnvFix1(Text &text, const Env &env, Index number);
void kvWriteKtCamFix1(Text &text, const Cam &cam, Index number);
void kvWriteKtLightFix1(Text &text, const Light &light, Index number);
void kvWriteKtObjFix1(Text &text, const Obj &obj, Index number);
void kvWriteKtShapeFix1(Text &text, const Shape &shape, Index number);

} // namespace kova
