#pragma once

/// What happens when memory is short.
namespace zelk::cli {

/// What a thread can do when GMP gets no memory. GMP's functions cannot report a failed allocation,
/// nor leave its numbers intact when an exception passes through them.
class Reserve {
 public:
  Reserve() = default;
  Reserve(Reserve const&) = delete;
  Reserve& operator=(Reserve const&) = delete;

  /// Lets go of some memory, and returns whether there was any. Called from within an allocation.
  virtual bool let_go() = 0;

  /// Does not return. By default the command ends.
  virtual void give_up();

  /// The one of this thread, or null.
  static inline thread_local Reserve* mine = nullptr;

 protected:
  ~Reserve() = default;
};

/// Ends the command for want of memory, with the whole answers so far.
[[noreturn]] void end_without_memory();

/// Both to be called once, at the start.
void watch_allocations_of_gmp();

/// Where addresses are limited, by `ulimit -v` for one, has all threads take memory from one place:
/// a place of its own, as glibc gives each, reserves 64 MiB of them.
void share_scarce_addresses();

}  // namespace zelk::cli
