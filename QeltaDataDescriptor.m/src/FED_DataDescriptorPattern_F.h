#pragma once

#include "FED_Types_F.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Field `field` must equal the text of exactly `textLength` characters; nothing is trimmed, and a
 * negative length counts as 0. */
QELTA_EXPORT void DataDescriptorPattern_SetMatchExact_Str_F(
    FED_DataDescriptorPattern* pattern, const int32_t* field, const char* text,
    const int32_t* textLength) QELTA_ENTRY_NOEXCEPT;

/* "ITERATION:MATCH_EXACT(3) / ONF:MATCH_ALL / ...", all fourteen fields. */
QELTA_EXPORT void DataDescriptorPattern_ToString_F(FED_DataDescriptorPattern* pattern, char* buffer,
                                                   const int32_t* bufferLength)
    QELTA_ENTRY_NOEXCEPT;

#ifdef __cplusplus
}
#endif
