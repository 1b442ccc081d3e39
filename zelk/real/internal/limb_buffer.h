#pragma once

#include <gmp.h>

#include <cstddef>
#include <memory>

namespace zelk::real {

/// Working storage for GMP's functions on limbs: on the stack while it is small. Not initialised.
class LimbBuffer {
 public:
  explicit LimbBuffer(std::size_t count) {
    if (count > own_count) heap.reset(new mp_limb_t[count]);
  }

  /// The next `count` limbs. Requires: no more in all than asked for at first.
  mp_limb_t* take(std::size_t count) {
    mp_limb_t* const start = (heap ? heap.get() : own) + taken;
    taken += count;
    return start;
  }

 private:
  static constexpr std::size_t own_count = 512;

  std::size_t taken = 0;
  std::unique_ptr<mp_limb_t[]> heap;
  mp_limb_t own[own_count];
};

}  // namespace zelk::real
