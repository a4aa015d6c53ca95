!> Record cursors of id views: fields that refer to other entities hold ids and names.
module qelta_id_records
  use, intrinsic :: iso_c_binding, only: c_f_pointer, c_null_ptr, c_ptr
  use, intrinsic :: iso_fortran_env, only: int32, int64, real64
  use qelta_bindings, only: DoubleArray_Delete_F, DoubleArray_New_F, IntArray_Delete_F, &
    IntArray_New_F
  use qelta_failures, only: conclude, fail, for_c
  use qelta_fields
  use qelta_handles, only: drop, field_count_of, field_type_of, hold_view_record, id_type_of, &
    is_child, is_open, look_on, release, ticket
  use qelta_id_bindings
  use qelta_kinds
  implicit none
  private
  public :: qelta_id_record, adopt_record, cursor_of

  !> A cursor of an id view, which `get_record` of the view fills and `set_record` stores. Owned and
  !> released as a `qelta_record` is, and with its view. Fields count from 1; those that refer to
  !> other entities are stored as indices and given as ids or names. Where a field's type does not
  !> fit, get and set fail. Setting registers an id or name that is not known
  !> where the kind describes the model itself (topology, groups); else it fails.
  type :: qelta_id_record
    private
    type(ticket) :: cursor
  contains
    !> get(field, value), set(field, value): an integer, also the id that a reference stands for; a
    !> real(real64) for a double or a time; 3 of them for a vector, 6 (xx, yy, zz, xy, yz, zx) for a
    !> tensor; a character(:), allocatable, for a text or the name that a reference stands for.
    generic :: get => get_integer, get_double, get_doubles, get_text
    generic :: set => set_integer, set_double, set_doubles, set_text
    !> get_list(field, values): a list or set of integers, or of the ids that it refers to in the
    !> order of their indices when it is a set; a list of doubles. `values` is allocated to the
    !> length. set_list(field, values) takes the known names of what the list refers to as well.
    generic :: get_list => get_int_list, get_double_list
    generic :: set_list => set_int_list, set_double_list, set_names
    procedure :: field_count => record_field_count
    !> A `block_data_...`, or 0 where there is no such field.
    procedure :: field_type => record_field_type
    !> What a field refers to, or with 0 the record itself: an `id_type_...`, `id_type_record_index`
    !> for a plain number.
    procedure :: id_type => record_id_type
    procedure :: is_open => record_is_open
    procedure :: release => record_release
    generic :: assignment(=) => assign_record
    procedure, private :: get_integer, get_double, get_doubles, get_text
    procedure, private :: set_integer, set_double, set_doubles, set_text
    procedure, private :: get_int_list, get_double_list, set_int_list, set_double_list, set_names
    procedure, private :: assign_record
    final :: finalise_record
  end type

contains

  !> Makes `record` the holder of a cursor in place of what it held.
  subroutine adopt_record(record, cursor, view)
    type(qelta_id_record), intent(inout) :: record
    type(c_ptr), intent(in) :: cursor
    type(ticket), intent(in) :: view
    call hold_view_record(record%cursor, cursor, view)
  end subroutine

  !> The cursor, when it is open and of the given view.
  logical function cursor_of(record, view, cursor, status, message)
    type(qelta_id_record), intent(in) :: record
    type(ticket), intent(in) :: view
    type(c_ptr), intent(out) :: cursor
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    cursor_of = open_cursor(record%cursor, cursor, status, message)
    if (.not. cursor_of) return
    cursor_of = is_child(record%cursor, view)
    if (.not. cursor_of) then
      call fail('The record was made by another view; use create_record of this one.', &
                status, message)
    end if
  end function

  !> The cursor, when the field is a text or refers to an entity.
  logical function text_cursor(held, field, cursor, status, message)
    type(ticket), intent(in) :: held
    integer(int32), intent(in) :: field
    type(c_ptr), intent(out) :: cursor
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (id_type_of(held, field) == id_type_record_index) then
      text_cursor = field_cursor(held, field, [block_data_string], cursor, status, message)
    else
      text_cursor = field_cursor(held, field, number_types(held, field), cursor, status, message)
    end if
  end function

  ! What a field may be that holds a number or refers to an entity by its id or name.
  function number_types(held, field) result(types)
    type(ticket), intent(in) :: held
    integer(int32), intent(in) :: field
    integer(int32), allocatable :: types(:)
    types = integer_types
    if (id_type_of(held, field) /= id_type_record_index) types = [integer_types, block_data_string]
  end function

  subroutine get_integer(self, field, value, status, message)
    class(qelta_id_record), intent(in) :: self
    integer(int32), intent(in) :: field
    integer(int32), intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, number_types(self%cursor, field), cursor, &
      status, message)) return
    call IdRecord_GetInteger_F(cursor, field, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine set_integer(self, field, value, status, message)
    class(qelta_id_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    integer(int32), intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, number_types(self%cursor, field), cursor, &
      status, message)) return
    call IdRecord_SetInteger_F(cursor, field, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_double(self, field, value, status, message)
    class(qelta_id_record), intent(in) :: self
    integer(int32), intent(in) :: field
    real(real64), intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, double_types, cursor, status, message)) return
    call IdRecord_GetDouble_F(cursor, field, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine set_double(self, field, value, status, message)
    class(qelta_id_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    real(real64), intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, double_types, cursor, status, message)) return
    call IdRecord_SetDouble_F(cursor, field, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_doubles(self, field, values, status, message)
    class(qelta_id_record), intent(in) :: self
    integer(int32), intent(in) :: field
    real(real64), intent(inout), contiguous :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. vector_cursor(self%cursor, field, size(values), cursor, status, message)) return
    if (size(values) == 3) then
      call IdRecord_GetVector_F(cursor, field, values, code)
    else
      call IdRecord_GetTensor_F(cursor, field, values, code)
    end if
    call conclude(code, status, message)
  end subroutine

  subroutine set_doubles(self, field, values, status, message)
    class(qelta_id_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    real(real64), intent(in), contiguous :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. vector_cursor(self%cursor, field, size(values), cursor, status, message)) return
    if (size(values) == 3) then
      call IdRecord_SetVector_F(cursor, field, values, code)
    else
      call IdRecord_SetTensor_F(cursor, field, values, code)
    end if
    call conclude(code, status, message)
  end subroutine

  subroutine get_text(self, field, value, status, message)
    class(qelta_id_record), intent(in) :: self
    integer(int32), intent(in) :: field
    character(:), allocatable, intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    character(:), allocatable :: text
    type(c_ptr) :: cursor
    integer(int32) :: length, code
    if (.not. text_cursor(self%cursor, field, cursor, status, message)) return
    length = 0
    call IdRecord_GetStringLen_F(cursor, field, length, code)
    text = repeat(' ', length)
    if (code == qelta_ok .and. length > 0) then
      call IdRecord_GetString_F(cursor, field, text, length, code)
    end if
    if (code == qelta_ok) call move_alloc(text, value)
    call conclude(code, status, message)
  end subroutine

  subroutine set_text(self, field, value, status, message)
    class(qelta_id_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    character(*), intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. text_cursor(self%cursor, field, cursor, status, message)) return
    if (id_type_of(self%cursor, field) == id_type_record_index) then
      call IdRecord_SetString_F(cursor, field, for_c(value), code)
    else
      call IdRecord_SetString_F(cursor, field, for_c(trim(value)), code)
    end if
    call conclude(code, status, message)
  end subroutine

  subroutine get_int_list(self, field, values, status, message)
    class(qelta_id_record), intent(in) :: self
    integer(int32), intent(in) :: field
    integer(int32), allocatable, intent(inout) :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32), pointer :: list(:)
    type(qelta_array_layout), pointer :: array
    type(c_ptr) :: cursor, made
    integer(int32) :: code, ignored
    if (.not. field_cursor(self%cursor, field, int_list_types, cursor, status, message)) return
    made = c_null_ptr
    call IdRecord_GetIntList_F(cursor, field, made, code)
    if (code == qelta_ok) then
      call c_f_pointer(made, array)
      if (allocated(values)) deallocate (values)
      allocate (values(array%count))
      if (size(values) > 0) then
        call c_f_pointer(array%data, list, [array%count])
        values = list
      end if
      call IntArray_Delete_F(made, ignored)
    end if
    call conclude(code, status, message)
  end subroutine

  subroutine set_int_list(self, field, values, status, message)
    class(qelta_id_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    integer(int32), intent(in) :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor, list
    integer(int32) :: code, ignored
    if (.not. field_cursor(self%cursor, field, int_list_types, cursor, status, message)) return
    ! One value more, since an empty array may have no address.
    list = c_null_ptr
    call IntArray_New_F([values, 0_int32], size(values, kind=int64), list, code)
    if (code == qelta_ok) call IdRecord_SetIntList_F(cursor, field, list, code)
    call IntArray_Delete_F(list, ignored)
    call conclude(code, status, message)
  end subroutine

  subroutine get_double_list(self, field, values, status, message)
    class(qelta_id_record), intent(in) :: self
    integer(int32), intent(in) :: field
    real(real64), allocatable, intent(inout) :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    real(real64), pointer :: list(:)
    type(qelta_array_layout), pointer :: array
    type(c_ptr) :: cursor, made
    integer(int32) :: code, ignored
    if (.not. field_cursor(self%cursor, field, double_list_types, cursor, status, message)) return
    made = c_null_ptr
    call IdRecord_GetDoubleList_F(cursor, field, made, code)
    if (code == qelta_ok) then
      call c_f_pointer(made, array)
      if (allocated(values)) deallocate (values)
      allocate (values(array%count))
      if (size(values) > 0) then
        call c_f_pointer(array%data, list, [array%count])
        values = list
      end if
      call DoubleArray_Delete_F(made, ignored)
    end if
    call conclude(code, status, message)
  end subroutine

  subroutine set_double_list(self, field, values, status, message)
    class(qelta_id_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    real(real64), intent(in) :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor, list
    integer(int32) :: code, ignored
    if (.not. field_cursor(self%cursor, field, double_list_types, cursor, status, message)) return
    ! One value more, since an empty array may have no address.
    list = c_null_ptr
    call DoubleArray_New_F([values, 0.0_real64], size(values, kind=int64), list, code)
    if (code == qelta_ok) call IdRecord_SetDoubleList_F(cursor, field, list, code)
    call DoubleArray_Delete_F(list, ignored)
    call conclude(code, status, message)
  end subroutine

  subroutine set_names(self, field, values, status, message)
    class(qelta_id_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    character(*), intent(in) :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    character(len(values) + 1) :: names(size(values) + 1)  ! more, as in set_int_list
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, int_list_types, cursor, status, message)) return
    names(:size(values)) = values
    call IdRecord_SetStringList_F(cursor, field, names, len(names), size(values, kind=int64), code)
    call conclude(code, status, message)
  end subroutine

  pure integer function record_field_count(self)
    class(qelta_id_record), intent(in) :: self
    record_field_count = field_count_of(self%cursor)
  end function

  pure integer(int32) function record_field_type(self, field)
    class(qelta_id_record), intent(in) :: self
    integer(int32), intent(in) :: field
    record_field_type = field_type_of(self%cursor, field)
  end function

  pure integer(int32) function record_id_type(self, field)
    class(qelta_id_record), intent(in) :: self
    integer(int32), intent(in) :: field
    record_id_type = id_type_of(self%cursor, field)
  end function

  pure logical function record_is_open(self)
    class(qelta_id_record), intent(in) :: self
    record_is_open = is_open(self%cursor)
  end function

  subroutine record_release(self, status, message)
    class(qelta_id_record), intent(inout) :: self
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32) :: code
    call release(self%cursor, code)
    call conclude(code, status, message)
  end subroutine

  impure elemental subroutine assign_record(self, other)
    class(qelta_id_record), intent(inout) :: self
    type(qelta_id_record), intent(in) :: other
    call look_on(self%cursor, other%cursor)
  end subroutine

  impure elemental subroutine finalise_record(self)
    type(qelta_id_record), intent(inout) :: self
    call drop(self%cursor)
  end subroutine
end module
