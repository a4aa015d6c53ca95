#pragma once

#include "QeltaExport.h"

/* Marks the companion entry points; QELTA_BUILDING_FORTRAN is defined while they are compiled. */
#if defined(QELTA_BUILDING_FORTRAN)
#define QELTA_FORTRAN_EXPORT QELTA_SHOWN
#else
#define QELTA_FORTRAN_EXPORT QELTA_SEEN
#endif
