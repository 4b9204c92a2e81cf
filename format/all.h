/// What all records and lists of the format hold.
#pragma once

#include "format/behavior.h"
#include "format/chain.h"
#include "format/geometry.h"
#include "format/header.h"
#include "format/lists.h"
#include "format/material.h"
#include "format/palette.h"
#include "format/scene.h"
#include "format/skinning.h"
