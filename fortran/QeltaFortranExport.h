#pragma once

/* Marks the companion entry points; QELTA_BUILDING_FORTRAN is defined while they are compiled. */
#if defined(QELTA_STATIC)
#define QELTA_FORTRAN_EXPORT
#elif defined(_WIN32) && defined(QELTA_BUILDING_FORTRAN)
#define QELTA_FORTRAN_EXPORT __declspec(dllexport)
#elif defined(_WIN32)
#define QELTA_FORTRAN_EXPORT __declspec(dllimport)
#else
#define QELTA_FORTRAN_EXPORT __attribute__((visibility("default")))
#endif
