#pragma once

/// The version of these headers, by semantic versioning: while the first number is 0, the second
/// one changes when callers have to.
#define ZELK_VERSION_MAJOR 0
#define ZELK_VERSION_MINOR 1
#define ZELK_VERSION_PATCH 0

/// The same as one number to compare with, 100 for 0.1.0, and as text.
#define ZELK_VERSION_NUMBER \
  (ZELK_VERSION_MAJOR * 10000 + ZELK_VERSION_MINOR * 100 + ZELK_VERSION_PATCH)
#define ZELK_VERSION_STRING "0.1.0"
