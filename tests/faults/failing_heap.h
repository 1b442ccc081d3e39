#pragma once

/// The heap as the library sees it: `operator new`, and the `malloc` of the pools. Any one of these
/// allocations can be made to fail; GMP's own never do, since GMP offers no recovery.
namespace zelk::test::heap {

/// Makes the nth allocation from now on fail, that one alone; 0 makes none fail. Returns whether
/// the failure asked for before has happened.
bool fail_at(long nth);

inline long live_blocks = 0;
inline long failed_news = 0;
inline long failed_mallocs = 0;

}  // namespace zelk::test::heap
