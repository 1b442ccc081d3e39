#include "zelk/real/internal/constants.h"
