/// The version of this library and program.
#pragma once

#define KOVA_VERSION_MAJOR 1
#define KOVA_VERSION_MINOR 0
#define KOVA_VERSION_PATCH 0
#define KOVA_VERSION "1.0.0"
