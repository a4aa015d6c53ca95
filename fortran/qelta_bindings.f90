!> The flat entry points as they are, for programs that want them bare; `qelta` is the comfortable
!> way. Blocks, records, databases and arrays are addresses that the library gave out; descriptors,
!> patterns and descriptor lists are variables of the program. A missing argument ends the process.
!> A status comes last and is 0 on success; after a failure no output was written, and
!> LastError_Text_F tells why. Record indices count from 0, record fields from 1, descriptor fields
!> from 0, and nothing checks them. Texts without a length end with c_null_char.
module qelta_bindings
  use, intrinsic :: iso_c_binding, only: c_char, c_double, c_float, c_int32_t, c_int64_t, c_ptr
  use qelta_kinds, only: qelta_descriptor_layout, qelta_descriptor_list_layout, qelta_pattern_layout
  implicit none
  public
  private :: c_char, c_double, c_float, c_int32_t, c_int64_t, c_ptr
  private :: qelta_descriptor_layout, qelta_descriptor_list_layout, qelta_pattern_layout

  ! Blocks.
  interface
    subroutine DataBlock_CreateRecord_F(block, record, status) &
        bind(c, name='DataBlock_CreateRecord_F')
      import
      type(c_ptr), value :: block
      type(c_ptr), intent(inout) :: record
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_DeleteRecord_F(block, record, status) &
        bind(c, name='DataBlock_DeleteRecord_F')
      import
      type(c_ptr), value :: block
      type(c_ptr), intent(inout) :: record
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_GetDescriptor_F(block, descriptor) &
        bind(c, name='DataBlock_GetDescriptor_F')
      import
      type(c_ptr), value :: block
      type(qelta_descriptor_layout), intent(inout) :: descriptor
    end subroutine
    subroutine DataBlock_GetMaxIndex_F(block, max_index, status) &
        bind(c, name='DataBlock_GetMaxIndex_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), intent(inout) :: max_index
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_HasRecord_F(block, index, has, status) &
        bind(c, name='DataBlock_HasRecord_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), intent(in) :: index
      integer(c_int32_t), intent(inout) :: has
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_Reserve_F(block, count, status) bind(c, name='DataBlock_Reserve_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), intent(in) :: count
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_GetRecord_F(block, index, record, status) &
        bind(c, name='DataBlock_GetRecord_F')
      import
      type(c_ptr), value :: block, record
      integer(c_int32_t), intent(in) :: index
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_SetRecord_F(block, index, record, status) &
        bind(c, name='DataBlock_SetRecord_F')
      import
      type(c_ptr), value :: block, record
      integer(c_int32_t), intent(in) :: index
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_GetInteger_F(block, index, value, status) &
        bind(c, name='DataBlock_GetInteger_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), value :: index
      integer(c_int32_t), intent(inout) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_SetInteger_F(block, index, value, status) &
        bind(c, name='DataBlock_SetInteger_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), value :: index, value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_GetScalar_F(block, index, value, status) &
        bind(c, name='DataBlock_GetScalar_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), value :: index
      real(c_double), intent(inout) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_SetScalar_F(block, index, value, status) &
        bind(c, name='DataBlock_SetScalar_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), value :: index
      real(c_double), value :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_GetVector_F(block, index, values, status) &
        bind(c, name='DataBlock_GetVector_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), value :: index
      real(c_double), intent(inout) :: values(3)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_SetVector_F(block, index, values, status) &
        bind(c, name='DataBlock_SetVector_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), value :: index
      real(c_double), intent(in) :: values(3)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_GetTensor_F(block, index, values, status) &
        bind(c, name='DataBlock_GetTensor_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), value :: index
      real(c_double), intent(inout) :: values(6)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataBlock_SetTensor_F(block, index, values, status) &
        bind(c, name='DataBlock_SetTensor_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), value :: index
      real(c_double), intent(in) :: values(6)
      integer(c_int32_t), intent(out) :: status
    end subroutine
  end interface

  ! Record cursors.
  interface
    subroutine DataRecord_GetInteger_F(record, field, value, status) &
        bind(c, name='DataRecord_GetInteger_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      integer(c_int32_t), intent(inout) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_SetInteger_F(record, field, value, status) &
        bind(c, name='DataRecord_SetInteger_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field, value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_GetFloat_F(record, field, value, status) &
        bind(c, name='DataRecord_GetFloat_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      real(c_float), intent(inout) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_SetFloat_F(record, field, value, status) &
        bind(c, name='DataRecord_SetFloat_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      real(c_float), value :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_GetDouble_F(record, field, value, status) &
        bind(c, name='DataRecord_GetDouble_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      real(c_double), intent(inout) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_SetDouble_F(record, field, value, status) &
        bind(c, name='DataRecord_SetDouble_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      real(c_double), value :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_GetVector_F(record, field, values, status) &
        bind(c, name='DataRecord_GetVector_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      real(c_double), intent(inout) :: values(3)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_SetVector_F(record, field, values, status) &
        bind(c, name='DataRecord_SetVector_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      real(c_double), intent(in) :: values(3)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_GetTensor_F(record, field, values, status) &
        bind(c, name='DataRecord_GetTensor_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      real(c_double), intent(inout) :: values(6)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_SetTensor_F(record, field, values, status) &
        bind(c, name='DataRecord_SetTensor_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      real(c_double), intent(in) :: values(6)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_GetIntListLen_F(record, field, length, status) &
        bind(c, name='DataRecord_GetIntListLen_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      integer(c_int32_t), intent(inout) :: length
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_GetIntListNative_F(record, field, values, count, status) &
        bind(c, name='DataRecord_GetIntListNative_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      integer(c_int32_t), intent(inout) :: values(*), count
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_GetIntList_F(record, field, list, status) &
        bind(c, name='DataRecord_GetIntList_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      type(c_ptr), intent(inout) :: list
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_SetIntList_F(record, field, list, status) &
        bind(c, name='DataRecord_SetIntList_F')
      import
      type(c_ptr), value :: record, list
      integer(c_int32_t), intent(in) :: field
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_GetDoubleListLen_F(record, field, length, status) &
        bind(c, name='DataRecord_GetDoubleListLen_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      integer(c_int32_t), intent(inout) :: length
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_GetDoubleListNative_F(record, field, values, count, status) &
        bind(c, name='DataRecord_GetDoubleListNative_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), value :: field
      real(c_double), intent(inout) :: values(*)
      integer(c_int32_t), intent(inout) :: count
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_GetDoubleList_F(record, field, list, status) &
        bind(c, name='DataRecord_GetDoubleList_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      type(c_ptr), intent(inout) :: list
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_SetDoubleList_F(record, field, list, status) &
        bind(c, name='DataRecord_SetDoubleList_F')
      import
      type(c_ptr), value :: record, list
      integer(c_int32_t), intent(in) :: field
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_GetString_F(record, field, buffer, buffer_length, status) &
        bind(c, name='DataRecord_GetString_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field, buffer_length
      character(kind=c_char), intent(inout) :: buffer(*)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DataRecord_SetString_F(record, field, text, status) &
        bind(c, name='DataRecord_SetString_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      character(kind=c_char), intent(in) :: text(*)
      integer(c_int32_t), intent(out) :: status
    end subroutine
  end interface

  ! Descriptors. Pure: the pool of texts behind them only remembers what it was given.
  interface
    pure subroutine Descriptor_GetString_F(descriptor, field, buffer, buffer_length) &
        bind(c, name='Descriptor_GetString_F')
      import
      type(qelta_descriptor_layout), intent(in) :: descriptor
      integer(c_int32_t), intent(in) :: field, buffer_length
      character(kind=c_char), intent(inout) :: buffer(*)
    end subroutine
    pure subroutine Descriptor_SetString_F(descriptor, field, text) &
        bind(c, name='Descriptor_SetString_F')
      import
      type(qelta_descriptor_layout), intent(inout) :: descriptor
      integer(c_int32_t), intent(in) :: field
      character(kind=c_char), intent(in) :: text(*)
    end subroutine
    pure subroutine Descriptor_ToString_F(descriptor, buffer, buffer_length) &
        bind(c, name='Descriptor_ToString_F')
      import
      type(qelta_descriptor_layout), intent(in) :: descriptor
      character(kind=c_char), intent(inout) :: buffer(*)
      integer(c_int32_t), intent(in) :: buffer_length
    end subroutine
  end interface

  ! Patterns, pure as well.
  interface
    pure subroutine DataDescriptorPattern_SetMatchExact_Str_F(pattern, field, text, text_length) &
        bind(c, name='DataDescriptorPattern_SetMatchExact_Str_F')
      import
      type(qelta_pattern_layout), intent(inout) :: pattern
      integer(c_int32_t), intent(in) :: field, text_length
      character(kind=c_char), intent(in) :: text(*)
    end subroutine
    pure subroutine DataDescriptorPattern_ToString_F(pattern, buffer, buffer_length) &
        bind(c, name='DataDescriptorPattern_ToString_F')
      import
      type(qelta_pattern_layout), intent(in) :: pattern
      character(kind=c_char), intent(inout) :: buffer(*)
      integer(c_int32_t), intent(in) :: buffer_length
    end subroutine
  end interface

  ! Descriptor lists.
  interface
    subroutine DataDescriptorList_Resize_F(list, size) bind(c, name='DataDescriptorList_Resize_F')
      import
      type(qelta_descriptor_list_layout), intent(inout) :: list
      integer(c_int64_t), intent(in) :: size
    end subroutine
    subroutine DataDescriptorList_Deallocate_F(list) bind(c, name='DataDescriptorList_Deallocate_F')
      import
      type(qelta_descriptor_list_layout), intent(inout) :: list
    end subroutine
  end interface

  ! Companion entry points.
  interface
    subroutine Database_Open_F(kind, name, mode, cache_size, database, status) &
        bind(c, name='Database_Open_F')
      import
      character(kind=c_char), intent(in) :: kind(*), name(*)
      integer(c_int32_t), intent(in) :: mode
      integer(c_int64_t), intent(in) :: cache_size
      type(c_ptr), intent(inout) :: database
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_Close_F(database, status) bind(c, name='Database_Close_F')
      import
      type(c_ptr), intent(inout) :: database
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_Save_F(database, status) bind(c, name='Database_Save_F')
      import
      type(c_ptr), value :: database
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_FetchBlock_F(database, descriptor, block, status) &
        bind(c, name='Database_FetchBlock_F')
      import
      type(c_ptr), value :: database
      type(qelta_descriptor_layout), intent(in) :: descriptor
      type(c_ptr), intent(inout) :: block
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_FetchBlock_Custom_F(database, descriptor, format, block, status) &
        bind(c, name='Database_FetchBlock_Custom_F')
      import
      type(c_ptr), value :: database
      type(qelta_descriptor_layout), intent(in) :: descriptor
      character(kind=c_char), intent(in) :: format(*)
      type(c_ptr), intent(inout) :: block
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_HasBlock_F(database, descriptor, has, status) &
        bind(c, name='Database_HasBlock_F')
      import
      type(c_ptr), value :: database
      type(qelta_descriptor_layout), intent(in) :: descriptor
      integer(c_int32_t), intent(inout) :: has
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_DeleteBlock_F(database, descriptor, status) &
        bind(c, name='Database_DeleteBlock_F')
      import
      type(c_ptr), value :: database
      type(qelta_descriptor_layout), intent(in) :: descriptor
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_DeleteBlocks_F(database, pattern, status) &
        bind(c, name='Database_DeleteBlocks_F')
      import
      type(c_ptr), value :: database
      type(qelta_pattern_layout), intent(in) :: pattern
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_FindBlocks_F(database, pattern, list, status) &
        bind(c, name='Database_FindBlocks_F')
      import
      type(c_ptr), value :: database
      type(qelta_pattern_layout), intent(in) :: pattern
      type(qelta_descriptor_list_layout), intent(inout) :: list
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_SelectBlocks_F(database, text, list, status) &
        bind(c, name='Database_SelectBlocks_F')
      import
      type(c_ptr), value :: database
      character(kind=c_char), intent(in) :: text(*)
      type(qelta_descriptor_list_layout), intent(inout) :: list
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_CreateAlias_F(database, existing, alias, created, status) &
        bind(c, name='Database_CreateAlias_F')
      import
      type(c_ptr), value :: database
      type(qelta_descriptor_layout), intent(in) :: existing, alias
      integer(c_int32_t), intent(inout) :: created
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Block_ReadColumn_F(block, field, first, count, values, status) &
        bind(c, name='Block_ReadColumn_F')
      import
      type(c_ptr), value :: block, values
      integer(c_int32_t), intent(in) :: field, first, count
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Block_WriteColumn_F(block, field, first, count, values, status) &
        bind(c, name='Block_WriteColumn_F')
      import
      type(c_ptr), value :: block, values
      integer(c_int32_t), intent(in) :: field, first, count
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Block_GetFieldTypes_F(block, room, types, count, status) &
        bind(c, name='Block_GetFieldTypes_F')
      import
      type(c_ptr), value :: block
      integer(c_int32_t), intent(in) :: room
      integer(c_int32_t), intent(inout) :: types(*), count
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Record_GetStringLen_F(record, field, length, status) &
        bind(c, name='Record_GetStringLen_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      integer(c_int32_t), intent(inout) :: length
      integer(c_int32_t), intent(out) :: status
    end subroutine
    pure subroutine Descriptor_GetStringLen_F(descriptor, field, length, status) &
        bind(c, name='Descriptor_GetStringLen_F')
      import
      type(qelta_descriptor_layout), intent(in) :: descriptor
      integer(c_int32_t), intent(in) :: field
      integer(c_int32_t), intent(inout) :: length
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IntArray_New_F(values, count, array, status) bind(c, name='IntArray_New_F')
      import
      integer(c_int32_t), intent(in) :: values(*)
      integer(c_int64_t), intent(in) :: count
      type(c_ptr), intent(inout) :: array
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IntArray_Delete_F(array, status) bind(c, name='IntArray_Delete_F')
      import
      type(c_ptr), intent(inout) :: array
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DoubleArray_New_F(values, count, array, status) bind(c, name='DoubleArray_New_F')
      import
      real(c_double), intent(in) :: values(*)
      integer(c_int64_t), intent(in) :: count
      type(c_ptr), intent(inout) :: array
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine DoubleArray_Delete_F(array, status) bind(c, name='DoubleArray_Delete_F')
      import
      type(c_ptr), intent(inout) :: array
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine LastError_Text_F(text, text_length, message_id, message_id_length) &
        bind(c, name='LastError_Text_F')
      import
      character(kind=c_char), intent(inout) :: text(*), message_id(*)
      integer(c_int32_t), intent(in) :: text_length, message_id_length
    end subroutine
  end interface
end module
