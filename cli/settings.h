#pragma once

#include "cli/limits.h"
#include "cli/render.h"

namespace zelk::cli {

/// What holds for every query of a run.
struct Settings {
  Style style;
  Limits limits;
};

}  // namespace zelk::cli
