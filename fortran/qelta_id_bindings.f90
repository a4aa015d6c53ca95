!> The flat entry points for external ids and names, in the manner of `qelta_bindings`. Arrays that
!> a getter made are `qelta_array_layout` in memory and released with IntArray_Delete_F or
!> DoubleArray_Delete_F.
module qelta_id_bindings
  use, intrinsic :: iso_c_binding, only: c_char, c_double, c_int32_t, c_int64_t, c_ptr
  use qelta_kinds, only: qelta_pattern_layout
  implicit none
  public
  private :: c_char, c_double, c_int32_t, c_int64_t, c_ptr, qelta_pattern_layout

  ! Id maps, and copies between databases that number differently.
  interface
    subroutine Database_AddIds_F(database, id_type, first_index, ids, count, status) &
        bind(c, name='Database_AddIds_F')
      import
      type(c_ptr), value :: database
      integer(c_int32_t), intent(in) :: id_type, ids(*)
      integer(c_int64_t), intent(in) :: first_index, count
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_AddName_F(database, id_type, index, id, name, status) &
        bind(c, name='Database_AddName_F')
      import
      type(c_ptr), value :: database
      integer(c_int32_t), intent(in) :: id_type, id
      integer(c_int64_t), intent(in) :: index
      character(kind=c_char), intent(in) :: name(*)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_AddNames_F(database, id_type, first_index, ids, names, name_length, count, &
                                   status) bind(c, name='Database_AddNames_F')
      import
      type(c_ptr), value :: database
      integer(c_int32_t), intent(in) :: id_type, ids(*), name_length
      integer(c_int64_t), intent(in) :: first_index, count
      character(kind=c_char), intent(in) :: names(*)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_IndexOfId_F(database, id_type, id, index, status) &
        bind(c, name='Database_IndexOfId_F')
      import
      type(c_ptr), value :: database
      integer(c_int32_t), intent(in) :: id_type, id
      integer(c_int64_t), intent(inout) :: index
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_IdOfIndex_F(database, id_type, index, id, status) &
        bind(c, name='Database_IdOfIndex_F')
      import
      type(c_ptr), value :: database
      integer(c_int32_t), intent(in) :: id_type
      integer(c_int64_t), intent(in) :: index
      integer(c_int32_t), intent(inout) :: id
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_IndexOfName_F(database, id_type, name, index, status) &
        bind(c, name='Database_IndexOfName_F')
      import
      type(c_ptr), value :: database
      integer(c_int32_t), intent(in) :: id_type
      character(kind=c_char), intent(in) :: name(*)
      integer(c_int64_t), intent(inout) :: index
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_NameOfIndex_F(database, id_type, index, buffer, buffer_length, status) &
        bind(c, name='Database_NameOfIndex_F')
      import
      type(c_ptr), value :: database
      integer(c_int32_t), intent(in) :: id_type, buffer_length
      integer(c_int64_t), intent(in) :: index
      character(kind=c_char), intent(inout) :: buffer(*)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_NameLenOfIndex_F(database, id_type, index, length, status) &
        bind(c, name='Database_NameLenOfIndex_F')
      import
      type(c_ptr), value :: database
      integer(c_int32_t), intent(in) :: id_type
      integer(c_int64_t), intent(in) :: index
      integer(c_int32_t), intent(inout) :: length
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_MaxIndexOfIds_F(database, id_type, max_index, status) &
        bind(c, name='Database_MaxIndexOfIds_F')
      import
      type(c_ptr), value :: database
      integer(c_int32_t), intent(in) :: id_type
      integer(c_int64_t), intent(inout) :: max_index
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine Database_CopyBlocks_F(source, target, pattern, copy_empty, copied, status) &
        bind(c, name='Database_CopyBlocks_F')
      import
      type(c_ptr), value :: source, target
      type(qelta_pattern_layout), intent(in) :: pattern
      integer(c_int32_t), intent(in) :: copy_empty
      integer(c_int64_t), intent(inout) :: copied
      integer(c_int32_t), intent(out) :: status
    end subroutine
  end interface

  ! Views that read and write records by id and name.
  interface
    subroutine IdView_New_F(database, block, view, status) bind(c, name='IdView_New_F')
      import
      type(c_ptr), value :: database, block
      type(c_ptr), intent(inout) :: view
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_Delete_F(view, status) bind(c, name='IdView_Delete_F')
      import
      type(c_ptr), intent(inout) :: view
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_GetIdTypes_F(view, room, types, count, status) &
        bind(c, name='IdView_GetIdTypes_F')
      import
      type(c_ptr), value :: view
      integer(c_int32_t), intent(in) :: room
      integer(c_int32_t), intent(inout) :: types(*), count
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_HasRecord_F(view, id, has, status) bind(c, name='IdView_HasRecord_F')
      import
      type(c_ptr), value :: view
      integer(c_int32_t), intent(in) :: id
      integer(c_int32_t), intent(inout) :: has
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_HasRecord_Name_F(view, name, has, status) &
        bind(c, name='IdView_HasRecord_Name_F')
      import
      type(c_ptr), value :: view
      character(kind=c_char), intent(in) :: name(*)
      integer(c_int32_t), intent(inout) :: has
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_GetScalar_F(view, id, value, status) bind(c, name='IdView_GetScalar_F')
      import
      type(c_ptr), value :: view
      integer(c_int32_t), intent(in) :: id
      real(c_double), intent(inout) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_SetScalar_F(view, id, value, status) bind(c, name='IdView_SetScalar_F')
      import
      type(c_ptr), value :: view
      integer(c_int32_t), intent(in) :: id
      real(c_double), intent(in) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_GetVector_F(view, id, values, status) bind(c, name='IdView_GetVector_F')
      import
      type(c_ptr), value :: view
      integer(c_int32_t), intent(in) :: id
      real(c_double), intent(inout) :: values(3)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_SetVector_F(view, id, values, status) bind(c, name='IdView_SetVector_F')
      import
      type(c_ptr), value :: view
      integer(c_int32_t), intent(in) :: id
      real(c_double), intent(in) :: values(3)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_GetTensor_F(view, id, values, status) bind(c, name='IdView_GetTensor_F')
      import
      type(c_ptr), value :: view
      integer(c_int32_t), intent(in) :: id
      real(c_double), intent(inout) :: values(6)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_SetTensor_F(view, id, values, status) bind(c, name='IdView_SetTensor_F')
      import
      type(c_ptr), value :: view
      integer(c_int32_t), intent(in) :: id
      real(c_double), intent(in) :: values(6)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_GetScalar_Name_F(view, name, value, status) &
        bind(c, name='IdView_GetScalar_Name_F')
      import
      type(c_ptr), value :: view
      character(kind=c_char), intent(in) :: name(*)
      real(c_double), intent(inout) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_SetScalar_Name_F(view, name, value, status) &
        bind(c, name='IdView_SetScalar_Name_F')
      import
      type(c_ptr), value :: view
      character(kind=c_char), intent(in) :: name(*)
      real(c_double), intent(in) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_GetVector_Name_F(view, name, values, status) &
        bind(c, name='IdView_GetVector_Name_F')
      import
      type(c_ptr), value :: view
      character(kind=c_char), intent(in) :: name(*)
      real(c_double), intent(inout) :: values(3)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_SetVector_Name_F(view, name, values, status) &
        bind(c, name='IdView_SetVector_Name_F')
      import
      type(c_ptr), value :: view
      character(kind=c_char), intent(in) :: name(*)
      real(c_double), intent(in) :: values(3)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_GetTensor_Name_F(view, name, values, status) &
        bind(c, name='IdView_GetTensor_Name_F')
      import
      type(c_ptr), value :: view
      character(kind=c_char), intent(in) :: name(*)
      real(c_double), intent(inout) :: values(6)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_SetTensor_Name_F(view, name, values, status) &
        bind(c, name='IdView_SetTensor_Name_F')
      import
      type(c_ptr), value :: view
      character(kind=c_char), intent(in) :: name(*)
      real(c_double), intent(in) :: values(6)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_CreateRecord_F(view, record, status) bind(c, name='IdView_CreateRecord_F')
      import
      type(c_ptr), value :: view
      type(c_ptr), intent(inout) :: record
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_DeleteRecord_F(view, record, status) bind(c, name='IdView_DeleteRecord_F')
      import
      type(c_ptr), value :: view
      type(c_ptr), intent(inout) :: record
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_GetRecord_F(view, id, record, status) bind(c, name='IdView_GetRecord_F')
      import
      type(c_ptr), value :: view, record
      integer(c_int32_t), intent(in) :: id
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_GetRecord_Name_F(view, name, record, status) &
        bind(c, name='IdView_GetRecord_Name_F')
      import
      type(c_ptr), value :: view, record
      character(kind=c_char), intent(in) :: name(*)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_SetRecord_F(view, id, record, status) bind(c, name='IdView_SetRecord_F')
      import
      type(c_ptr), value :: view, record
      integer(c_int32_t), intent(in) :: id
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdView_SetRecord_Name_F(view, name, record, status) &
        bind(c, name='IdView_SetRecord_Name_F')
      import
      type(c_ptr), value :: view, record
      character(kind=c_char), intent(in) :: name(*)
      integer(c_int32_t), intent(out) :: status
    end subroutine
  end interface

  ! Record cursors of views.
  interface
    subroutine IdRecord_GetInteger_F(record, field, value, status) &
        bind(c, name='IdRecord_GetInteger_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      integer(c_int32_t), intent(inout) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_SetInteger_F(record, field, value, status) &
        bind(c, name='IdRecord_SetInteger_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field, value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_GetDouble_F(record, field, value, status) &
        bind(c, name='IdRecord_GetDouble_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      real(c_double), intent(inout) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_SetDouble_F(record, field, value, status) &
        bind(c, name='IdRecord_SetDouble_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      real(c_double), intent(in) :: value
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_GetVector_F(record, field, values, status) &
        bind(c, name='IdRecord_GetVector_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      real(c_double), intent(inout) :: values(3)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_SetVector_F(record, field, values, status) &
        bind(c, name='IdRecord_SetVector_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      real(c_double), intent(in) :: values(3)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_GetTensor_F(record, field, values, status) &
        bind(c, name='IdRecord_GetTensor_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      real(c_double), intent(inout) :: values(6)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_SetTensor_F(record, field, values, status) &
        bind(c, name='IdRecord_SetTensor_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      real(c_double), intent(in) :: values(6)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_GetString_F(record, field, buffer, buffer_length, status) &
        bind(c, name='IdRecord_GetString_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field, buffer_length
      character(kind=c_char), intent(inout) :: buffer(*)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_GetStringLen_F(record, field, length, status) &
        bind(c, name='IdRecord_GetStringLen_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      integer(c_int32_t), intent(inout) :: length
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_SetString_F(record, field, text, status) &
        bind(c, name='IdRecord_SetString_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      character(kind=c_char), intent(in) :: text(*)
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_GetIntList_F(record, field, list, status) &
        bind(c, name='IdRecord_GetIntList_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      type(c_ptr), intent(inout) :: list
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_SetIntList_F(record, field, list, status) &
        bind(c, name='IdRecord_SetIntList_F')
      import
      type(c_ptr), value :: record, list
      integer(c_int32_t), intent(in) :: field
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_GetDoubleList_F(record, field, list, status) &
        bind(c, name='IdRecord_GetDoubleList_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field
      type(c_ptr), intent(inout) :: list
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_SetDoubleList_F(record, field, list, status) &
        bind(c, name='IdRecord_SetDoubleList_F')
      import
      type(c_ptr), value :: record, list
      integer(c_int32_t), intent(in) :: field
      integer(c_int32_t), intent(out) :: status
    end subroutine
    subroutine IdRecord_SetStringList_F(record, field, names, name_length, count, status) &
        bind(c, name='IdRecord_SetStringList_F')
      import
      type(c_ptr), value :: record
      integer(c_int32_t), intent(in) :: field, name_length
      character(kind=c_char), intent(in) :: names(*)
      integer(c_int64_t), intent(in) :: count
      integer(c_int32_t), intent(out) :: status
    end subroutine
  end interface
end module
