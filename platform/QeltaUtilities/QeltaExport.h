#pragma once

// How a symbol is shown outside a shared library, and how a program sees it that uses the library.
#if defined(QELTA_STATIC)
#define QELTA_SHOWN
#define QELTA_SEEN
#elif defined(_WIN32)
#define QELTA_SHOWN __declspec(dllexport)
#define QELTA_SEEN __declspec(dllimport)
#else
#define QELTA_SHOWN __attribute__((visibility("default")))
#define QELTA_SEEN QELTA_SHOWN
#endif

/// QELTA_EXPORT marks what is visible outside the shared library: the exported classes and the flat
/// entry points. Everything else stays hidden.
///
/// QELTA_BUILDING is defined while the library itself is compiled, QELTA_STATIC when the library is
/// built or used as a static one.
#if defined(QELTA_BUILDING)
#define QELTA_EXPORT QELTA_SHOWN
#else
#define QELTA_EXPORT QELTA_SEEN
#endif
