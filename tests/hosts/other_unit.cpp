#include "tests/hosts/resident.h"

[[maybe_unused]] static zelk::host::Resident const resident;
