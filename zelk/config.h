#pragma once

#if __cplusplus < 202002L
#error "zelk needs C++20: compile with -std=c++20 or later"
#include "zelk needs C++20"  // which is no file: the compiler stops here, and has said why
#endif

/// Marks what the libraries offer. Built shared they hide everything else: the helpers behind it,
/// and what is inline in the headers, which a program compiles for itself. Linked statically, which
/// ZELK_STATIC says, nothing is marked: a plugin with hidden symbols of its own exports none of
/// them.
#if defined(ZELK_STATIC)
#define ZELK_EXPORT
#else
#define ZELK_EXPORT [[gnu::visibility("default")]]
#endif

/// On a member function: what it returns points into the object. Clang warns when it outlives it.
#if defined(__clang__)
#define ZELK_LIFETIMEBOUND [[clang::lifetimebound]]
#else
#define ZELK_LIFETIMEBOUND
#endif
