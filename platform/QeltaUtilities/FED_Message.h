#pragma once

#include <string>

#include "QeltaExport.h"

/// The text that `format` and its arguments give, in the conventions of QeltaFormat: C's printf,
/// and
/// `%Iu` for an unsigned 64-bit number. A null format gives an empty text.
QELTA_EXPORT std::string FED_MESSAGE(const char* format, ...);
