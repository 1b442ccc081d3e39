#pragma once

/// Marks what the libraries offer. Built shared they hide everything else: the helpers behind it,
/// and what is inline in the headers, which a program compiles for itself.
#define ZELK_EXPORT [[gnu::visibility("default")]]
