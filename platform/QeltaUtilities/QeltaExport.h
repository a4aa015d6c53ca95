#pragma once

/// QELTA_EXPORT marks what is visible outside the shared library: the exported classes and the flat
/// entry points. Everything else stays hidden.
///
/// QELTA_BUILDING is defined while the library itself is compiled, QELTA_STATIC when the library is
/// built or used as a static one.
#if defined(QELTA_STATIC)
#define QELTA_EXPORT
#elif defined(_WIN32) && defined(QELTA_BUILDING)
#define QELTA_EXPORT __declspec(dllexport)
#elif defined(_WIN32)
#define QELTA_EXPORT __declspec(dllimport)
#else
#define QELTA_EXPORT __attribute__((visibility("default")))
#endif
