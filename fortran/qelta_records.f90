!> Record cursors: typed access to the fields of a record.
module qelta_records
  use, intrinsic :: iso_c_binding, only: c_associated, c_null_ptr, c_ptr
  use, intrinsic :: iso_fortran_env, only: int32, int64, real32, real64
  use qelta_bindings
  use qelta_failures, only: conclude, fail, for_c
  use qelta_fields
  use qelta_handles, only: block_of, drop, field_count_of, field_type_of, hold_record, is_open, &
    look_on, release, ticket
  use qelta_kinds
  implicit none
  private
  public :: qelta_record, adopt_record, cursor_of

  !> A cursor: the fields of one record, counted from 1, which `get_record` of a block fills and
  !> `set_record` stores. The variable that `create_record` filled owns the cursor: it is given back
  !> when that variable ends or is given another value, on `release` of any, and when its block is
  !> deleted or its database closed, after which it fails. Variables assigned from the owner look
  !> on. Where a field's type does not fit, get and set fail.
  type :: qelta_record
    private
    type(ticket) :: cursor
  contains
    !> get(field, value), set(field, value): an integer or logical; a real(real32) for a float, a
    !> real(real64) for a double or a time; 3 of them for a vector, 6 (xx, yy, zz, xy, yz, zx) for a
    !> tensor; a character(:), allocatable, for a text, which is stored with all its blanks.
    generic :: get => get_integer, get_logical, get_float, get_double, get_doubles, get_text
    generic :: set => set_integer, set_logical, set_float, set_double, set_doubles, set_text
    !> get_list(field, values), set_list(field, values): lists of integers or doubles, and sets of
    !> integers, which come in ascending order. `values` is allocated to the length.
    generic :: get_list => get_int_list, get_double_list
    generic :: set_list => set_int_list, set_double_list
    procedure :: field_count => record_field_count
    !> A `block_data_...`, or 0 where there is no such field.
    procedure :: field_type => record_field_type
    procedure :: is_open => record_is_open
    procedure :: release => record_release
    generic :: assignment(=) => assign_record
    procedure, private :: get_integer, get_logical, get_float, get_double, get_doubles, get_text
    procedure, private :: set_integer, set_logical, set_float, set_double, set_doubles, set_text
    procedure, private :: get_int_list, get_double_list, set_int_list, set_double_list
    procedure, private :: assign_record
    final :: finalise_record
  end type

contains

  !> Makes `record` the holder of a cursor in place of what it held.
  subroutine adopt_record(record, cursor, block, database, types)
    type(qelta_record), intent(inout) :: record
    type(c_ptr), intent(in) :: cursor, block
    type(ticket), intent(in) :: database
    integer(int32), intent(in) :: types(:)
    call hold_record(record%cursor, cursor, block, database, types)
  end subroutine

  !> The cursor, when it is open and of the given block.
  logical function cursor_of(record, block, cursor, status, message)
    type(qelta_record), intent(in) :: record
    type(c_ptr), intent(in) :: block
    type(c_ptr), intent(out) :: cursor
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    cursor_of = open_cursor(record%cursor, cursor, status, message)
    if (.not. cursor_of) return
    cursor_of = c_associated(block_of(record%cursor), block)
    if (.not. cursor_of) then
      call fail('The record was made by another block; use create_record of this one.', &
                status, message)
    end if
  end function

  subroutine get_integer(self, field, value, status, message)
    class(qelta_record), intent(in) :: self
    integer(int32), intent(in) :: field
    integer(int32), intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, integer_types, cursor, status, message)) return
    call DataRecord_GetInteger_F(cursor, field, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine set_integer(self, field, value, status, message)
    class(qelta_record), intent(inout) :: self
    integer(int32), intent(in) :: field, value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, integer_types, cursor, status, message)) return
    call DataRecord_SetInteger_F(cursor, field, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_logical(self, field, value, status, message)
    class(qelta_record), intent(in) :: self
    integer(int32), intent(in) :: field
    logical, intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: number, code
    if (.not. field_cursor(self%cursor, field, integer_types, cursor, status, message)) return
    call DataRecord_GetInteger_F(cursor, field, number, code)
    if (code == qelta_ok) value = number /= 0
    call conclude(code, status, message)
  end subroutine

  subroutine set_logical(self, field, value, status, message)
    class(qelta_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    logical, intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    call self%set_integer(field, merge(1_int32, 0_int32, value), status, message)
  end subroutine

  subroutine get_float(self, field, value, status, message)
    class(qelta_record), intent(in) :: self
    integer(int32), intent(in) :: field
    real(real32), intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, [block_data_float], cursor, status, message)) return
    call DataRecord_GetFloat_F(cursor, field, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine set_float(self, field, value, status, message)
    class(qelta_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    real(real32), intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, [block_data_float], cursor, status, message)) return
    call DataRecord_SetFloat_F(cursor, field, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_double(self, field, value, status, message)
    class(qelta_record), intent(in) :: self
    integer(int32), intent(in) :: field
    real(real64), intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, double_types, cursor, status, message)) return
    call DataRecord_GetDouble_F(cursor, field, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine set_double(self, field, value, status, message)
    class(qelta_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    real(real64), intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, double_types, cursor, status, message)) return
    call DataRecord_SetDouble_F(cursor, field, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_doubles(self, field, values, status, message)
    class(qelta_record), intent(in) :: self
    integer(int32), intent(in) :: field
    real(real64), intent(inout), contiguous :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. vector_cursor(self%cursor, field, size(values), cursor, status, message)) return
    if (size(values) == 3) then
      call DataRecord_GetVector_F(cursor, field, values, code)
    else
      call DataRecord_GetTensor_F(cursor, field, values, code)
    end if
    call conclude(code, status, message)
  end subroutine

  subroutine set_doubles(self, field, values, status, message)
    class(qelta_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    real(real64), intent(in), contiguous :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. vector_cursor(self%cursor, field, size(values), cursor, status, message)) return
    if (size(values) == 3) then
      call DataRecord_SetVector_F(cursor, field, values, code)
    else
      call DataRecord_SetTensor_F(cursor, field, values, code)
    end if
    call conclude(code, status, message)
  end subroutine

  subroutine get_text(self, field, value, status, message)
    class(qelta_record), intent(in) :: self
    integer(int32), intent(in) :: field
    character(:), allocatable, intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    character(:), allocatable :: text
    type(c_ptr) :: cursor
    integer(int32) :: length, code
    if (.not. field_cursor(self%cursor, field, [block_data_string], cursor, status, message)) return
    length = 0
    call Record_GetStringLen_F(cursor, field, length, code)
    text = repeat(' ', length)
    if (code == qelta_ok .and. length > 0) then
      call DataRecord_GetString_F(cursor, field, text, length, code)
    end if
    if (code == qelta_ok) call move_alloc(text, value)
    call conclude(code, status, message)
  end subroutine

  subroutine set_text(self, field, value, status, message)
    class(qelta_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    character(*), intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor
    integer(int32) :: code
    if (.not. field_cursor(self%cursor, field, [block_data_string], cursor, status, message)) return
    call DataRecord_SetString_F(cursor, field, for_c(value), code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_int_list(self, field, values, status, message)
    class(qelta_record), intent(in) :: self
    integer(int32), intent(in) :: field
    integer(int32), allocatable, intent(inout) :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32), allocatable :: list(:)
    type(c_ptr) :: cursor
    integer(int32) :: length, code
    if (.not. field_cursor(self%cursor, field, int_list_types, cursor, status, message)) return
    length = 0
    call DataRecord_GetIntListLen_F(cursor, field, length, code)
    allocate (list(length))
    if (code == qelta_ok .and. length > 0) then
      call DataRecord_GetIntListNative_F(cursor, field, list, length, code)
    end if
    if (code == qelta_ok) call move_alloc(list, values)
    call conclude(code, status, message)
  end subroutine

  subroutine set_int_list(self, field, values, status, message)
    class(qelta_record), intent(inout) :: self
    integer(int32), intent(in) :: field, values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor, list
    integer(int32) :: code, ignored
    if (.not. field_cursor(self%cursor, field, int_list_types, cursor, status, message)) return
    ! One value more, since an empty array may have no address.
    list = c_null_ptr
    call IntArray_New_F([values, 0_int32], size(values, kind=int64), list, code)
    if (code == qelta_ok) call DataRecord_SetIntList_F(cursor, field, list, code)
    call conclude(code, status, message)
    call IntArray_Delete_F(list, ignored)
  end subroutine

  subroutine get_double_list(self, field, values, status, message)
    class(qelta_record), intent(in) :: self
    integer(int32), intent(in) :: field
    real(real64), allocatable, intent(inout) :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    real(real64), allocatable :: list(:)
    type(c_ptr) :: cursor
    integer(int32) :: length, code
    if (.not. field_cursor(self%cursor, field, double_list_types, cursor, status, message)) return
    length = 0
    call DataRecord_GetDoubleListLen_F(cursor, field, length, code)
    allocate (list(length))
    if (code == qelta_ok .and. length > 0) then
      call DataRecord_GetDoubleListNative_F(cursor, field, list, length, code)
    end if
    if (code == qelta_ok) call move_alloc(list, values)
    call conclude(code, status, message)
  end subroutine

  subroutine set_double_list(self, field, values, status, message)
    class(qelta_record), intent(inout) :: self
    integer(int32), intent(in) :: field
    real(real64), intent(in) :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: cursor, list
    integer(int32) :: code, ignored
    if (.not. field_cursor(self%cursor, field, double_list_types, cursor, status, message)) return
    ! As in set_int_list.
    list = c_null_ptr
    call DoubleArray_New_F([values, 0.0_real64], size(values, kind=int64), list, code)
    if (code == qelta_ok) call DataRecord_SetDoubleList_F(cursor, field, list, code)
    call conclude(code, status, message)
    call DoubleArray_Delete_F(list, ignored)
  end subroutine

  pure integer function record_field_count(self)
    class(qelta_record), intent(in) :: self
    record_field_count = field_count_of(self%cursor)
  end function

  pure integer(int32) function record_field_type(self, field)
    class(qelta_record), intent(in) :: self
    integer(int32), intent(in) :: field
    record_field_type = field_type_of(self%cursor, field)
  end function

  pure logical function record_is_open(self)
    class(qelta_record), intent(in) :: self
    record_is_open = is_open(self%cursor)
  end function

  subroutine record_release(self, status, message)
    class(qelta_record), intent(inout) :: self
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32) :: code
    call release(self%cursor, code)
    call conclude(code, status, message)
  end subroutine

  impure elemental subroutine assign_record(self, other)
    class(qelta_record), intent(inout) :: self
    type(qelta_record), intent(in) :: other
    call look_on(self%cursor, other%cursor)
  end subroutine

  impure elemental subroutine finalise_record(self)
    type(qelta_record), intent(inout) :: self
    call drop(self%cursor)
  end subroutine
end module
