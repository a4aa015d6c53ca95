#pragma once

#include "FED_Types_F.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The text of a text field; ends the process when the field is not specified. */
QELTA_EXPORT void Descriptor_GetString_F(FED_DataDescriptor* descriptor, const int32_t* field,
                                         char* buffer,
                                         const int32_t* bufferLength) QELTA_ENTRY_NOEXCEPT;

/* Specifies a text field. `text` ends with a zero; blanks and the characters 9 to 13 at both ends
 * are dropped. */
QELTA_EXPORT void Descriptor_SetString_F(FED_DataDescriptor* descriptor, const int32_t* field,
                                         const char* text) QELTA_ENTRY_NOEXCEPT;

/* "ITERATION=3/ONF=12/LABEL=top". */
QELTA_EXPORT void Descriptor_ToString_F(FED_DataDescriptor* descriptor, char* buffer,
                                        const int32_t* bufferLength) QELTA_ENTRY_NOEXCEPT;

#ifdef __cplusplus
}
#endif
