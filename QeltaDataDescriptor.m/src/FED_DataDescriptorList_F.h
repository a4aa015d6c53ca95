#pragma once

#include "FED_Types_F.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Makes `*size` the count of the list; ends the process, naming the size, when there is no memory.
 * A fresh list is 24 zero bytes. */
QELTA_EXPORT void DataDescriptorList_Resize_F(FED_DataDescriptorList* list,
                                              const uint64_t* size) QELTA_ENTRY_NOEXCEPT;

/* Releases the descriptors; the list is empty afterwards and may be grown again. */
QELTA_EXPORT void DataDescriptorList_Deallocate_F(FED_DataDescriptorList* list)
    QELTA_ENTRY_NOEXCEPT;

#ifdef __cplusplus
}
#endif
