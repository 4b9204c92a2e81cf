/// The writers of the scene, environments, cameras, lights, objects and shapes.
#pragma once

#include "format/scene.h"
#include "textdump/lines.h"

namespace kova {

/// Opener, header lines and size table; of the scene, opener, fields and links.
void kvWriteKtSceneListFix1(Text &text, const Scene &scene);

/// Heading, fields, arrays and sub-records of one element, without its blocks.
void kvWriteKtLightFix1(Text &text, const Light &light, Index number);

} // namespace kova
