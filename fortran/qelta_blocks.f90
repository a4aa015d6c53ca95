!> Blocks: tables of records of one layout.
module qelta_blocks
  use, intrinsic :: iso_c_binding, only: c_loc, c_null_ptr, c_ptr
  use, intrinsic :: iso_fortran_env, only: int32, real32, real64
  use qelta_bindings
  use qelta_failures, only: conclude, fail, number_text
  use qelta_fields, only: get_field_types, is_vector_or_tensor, type_name
  use qelta_handles, only: deletions_of, is_open, object_of, ticket
  use qelta_keys, only: qelta_descriptor
  use qelta_kinds
  use qelta_records, only: adopt_record, cursor_of, qelta_record
  implicit none
  private
  public :: qelta_block, make_block, find_block

  !> A block that `fetch_block` of a database gave. A plain value: copies name the same block, and
  !> nothing has to be released. It fails when the block was deleted or the database closed. Record
  !> indices count from 0.
  !>
  !> Columns: the array's last extent says how many consecutive records there are, beginning with
  !> the index `first` (0). Without `field` they go to the first field of a fitting type. Reading
  !> needs every record to be there (else the array is undefined); writing makes those that are not,
  !> with zeros in other fields.
  type :: qelta_block
    private
    type(ticket) :: database
    type(c_ptr) :: block = c_null_ptr
    integer :: deletions = 0
    type(qelta_descriptor_layout) :: key
  contains
    procedure :: is_open => block_is_open
    procedure :: descriptor => block_descriptor
    !> The highest index that may hold a record; -1 for an empty block.
    procedure :: max_index => block_max_index
    procedure :: has_record => block_has_record
    !> A hint of how many records come.
    procedure :: reserve => block_reserve
    !> get(index, value), set(index, value): an integer, a double, or 3 or 6 doubles, in the first
    !> such field of a record. Setting makes a record that is not there.
    generic :: get => get_integer, get_scalar, get_components
    generic :: set => set_integer, set_scalar, set_components
    !> Columns of integers.
    procedure :: get_integers, set_integers
    !> Columns of doubles and times, or of floats in real(real32).
    generic :: get_scalars => get_doubles, get_floats
    generic :: set_scalars => set_doubles, set_floats
    !> Columns of shape (3, n).
    procedure :: get_vectors, set_vectors
    !> Columns of shape (6, n): xx, yy, zz, xy, yz, zx.
    procedure :: get_tensors, set_tensors
    procedure :: create_record => block_create_record
    procedure :: get_record => block_get_record
    procedure :: set_record => block_set_record
    procedure, private :: get_integer, get_scalar, get_components
    procedure, private :: set_integer, set_scalar, set_components
    procedure, private :: get_doubles, get_floats, set_doubles, set_floats
  end type

contains

  !> The block of `key` at the address that the database gave.
  function make_block(database, address, key) result(block)
    type(ticket), intent(in) :: database
    type(c_ptr), intent(in) :: address
    type(qelta_descriptor), intent(in) :: key
    type(qelta_block) :: block
    block = qelta_block(database, address, deletions_of(database), key%layout)
  end function

  !> The address of the block, when it is still there, and its database.
  logical function find_block(self, block, database, status, message)
    class(qelta_block), intent(in) :: self
    type(c_ptr), intent(out) :: block
    type(ticket), intent(out) :: database
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    database = self%database
    find_block = resolve(self, block, status, message)
  end function

  !> The address of the block, when it is still there. After a deletion in the database the key is
  !> looked up again, since the block may have gone.
  logical function resolve(self, block, status, message)
    class(qelta_block), intent(in) :: self
    type(c_ptr), intent(out) :: block
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    block = self%block
    resolve = is_open(self%database)
    if (.not. resolve) then
      call fail('The block was never fetched, or its database is closed.', status, message)
    else if (self%deletions /= deletions_of(self%database)) then
      resolve = look_up(self, block, status, message)
    end if
  end function

  logical function look_up(self, block, status, message)
    class(qelta_block), intent(in) :: self
    type(c_ptr), intent(inout) :: block
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(qelta_descriptor) :: key
    integer(int32) :: has, code
    has = 0
    call Database_HasBlock_F(object_of(self%database), self%key, has, code)
    if (code == qelta_ok .and. has == 1) then
      call Database_FetchBlock_F(object_of(self%database), self%key, block, code)
    end if
    look_up = code == qelta_ok .and. has == 1
    if (code /= qelta_ok) then
      call conclude(code, status, message)
    else if (has /= 1) then
      key%layout = self%key
      call fail('The block '//key%text()//' was deleted.', status, message)
    end if
  end function

  pure logical function block_is_open(self)
    class(qelta_block), intent(in) :: self
    block_is_open = is_open(self%database)
  end function

  function block_descriptor(self, status, message) result(key)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(qelta_descriptor) :: key
    type(c_ptr) :: block
    if (.not. resolve(self, block, status, message)) return
    call DataBlock_GetDescriptor_F(block, key%layout)
    key%layout%table_id = -1
    key%layout%block_id = -1
    key%layout%miss_stamp = 0
    if (present(status)) status = qelta_ok
  end function

  integer(int32) function block_max_index(self, status, message) result(index)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block
    integer(int32) :: code
    index = -1
    if (.not. resolve(self, block, status, message)) return
    call DataBlock_GetMaxIndex_F(block, index, code)
    call conclude(code, status, message)
  end function

  logical function block_has_record(self, index, status, message) result(has_record)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(in) :: index
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block
    integer(int32) :: has, code
    has_record = .false.
    if (.not. resolve(self, block, status, message)) return
    call DataBlock_HasRecord_F(block, index, has, code)
    has_record = has == 1
    call conclude(code, status, message)
  end function

  subroutine block_reserve(self, count, status, message)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(in) :: count
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block
    integer(int32) :: code
    if (.not. resolve(self, block, status, message)) return
    call DataBlock_Reserve_F(block, max(count, 0), code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_integer(self, index, value, status, message)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(in) :: index
    integer(int32), intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block
    integer(int32) :: code
    if (.not. resolve(self, block, status, message)) return
    call DataBlock_GetInteger_F(block, index, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine set_integer(self, index, value, status, message)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(in) :: index, value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block
    integer(int32) :: code
    if (.not. resolve(self, block, status, message)) return
    call DataBlock_SetInteger_F(block, index, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_scalar(self, index, value, status, message)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(in) :: index
    real(real64), intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block
    integer(int32) :: code
    if (.not. resolve(self, block, status, message)) return
    call DataBlock_GetScalar_F(block, index, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine set_scalar(self, index, value, status, message)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(in) :: index
    real(real64), intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block
    integer(int32) :: code
    if (.not. resolve(self, block, status, message)) return
    call DataBlock_SetScalar_F(block, index, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_components(self, index, values, status, message)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(in) :: index
    real(real64), intent(inout), contiguous :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block
    integer(int32) :: code
    if (.not. is_vector_or_tensor(size(values), status, message)) return
    if (.not. resolve(self, block, status, message)) return
    if (size(values) == 3) then
      call DataBlock_GetVector_F(block, index, values, code)
    else
      call DataBlock_GetTensor_F(block, index, values, code)
    end if
    call conclude(code, status, message)
  end subroutine

  subroutine set_components(self, index, values, status, message)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(in) :: index
    real(real64), intent(in), contiguous :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block
    integer(int32) :: code
    if (.not. is_vector_or_tensor(size(values), status, message)) return
    if (.not. resolve(self, block, status, message)) return
    if (size(values) == 3) then
      call DataBlock_SetVector_F(block, index, values, code)
    else
      call DataBlock_SetTensor_F(block, index, values, code)
    end if
    call conclude(code, status, message)
  end subroutine

  ! The field of a column with values of one of the types: the given one, or the first that fits.
  logical function find_column(block, types, column, field, status, message)
    type(c_ptr), intent(in) :: block
    integer(int32), intent(in) :: types(:)
    integer(int32), intent(out) :: column
    integer(int32), intent(in), optional :: field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32), allocatable :: present_types(:)
    integer(int32) :: first, last
    call get_field_types(block, present_types)
    first = 1
    last = size(present_types)
    if (present(field)) then
      first = max(field, 1)
      last = min(field, last)
    end if
    do column = first, last
      find_column = any(present_types(column) == types)
      if (find_column) return
    end do
    find_column = .false.
    if (present(field)) then
      call fail('Field '//number_text(field)//' of the block is not '//type_name(types(1))//'.', &
                status, message)
    else
      call fail('No field of the block is '//type_name(types(1))//'.', status, message)
    end if
  end function

  subroutine read_column(self, values, count, types, first, field, status, message)
    class(qelta_block), intent(in) :: self
    type(c_ptr), intent(in) :: values
    integer(int32), intent(in) :: count, types(:)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block
    integer(int32) :: column, code
    if (.not. resolve(self, block, status, message)) return
    if (.not. find_column(block, types, column, field, status, message)) return
    code = qelta_ok
    if (count > 0) call Block_ReadColumn_F(block, column, index_or_0(first), count, values, code)
    call conclude(code, status, message)
  end subroutine

  subroutine write_column(self, values, count, types, first, field, status, message)
    class(qelta_block), intent(in) :: self
    type(c_ptr), intent(in) :: values
    integer(int32), intent(in) :: count, types(:)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block
    integer(int32) :: column, code
    if (.not. resolve(self, block, status, message)) return
    if (.not. find_column(block, types, column, field, status, message)) return
    code = qelta_ok
    if (count > 0) call Block_WriteColumn_F(block, column, index_or_0(first), count, values, code)
    call conclude(code, status, message)
  end subroutine

  integer(int32) function index_or_0(first)
    integer(int32), intent(in), optional :: first
    index_or_0 = 0
    if (present(first)) index_or_0 = first
  end function

  subroutine get_integers(self, values, first, field, status, message)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(inout), contiguous, target :: values(:)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    call read_column(self, c_loc(values), size(values), [block_data_integer, block_data_index], &
                     first, field, status, message)
  end subroutine

  subroutine set_integers(self, values, first, field, status, message)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(in), contiguous, target :: values(:)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    call write_column(self, c_loc(values), size(values), [block_data_integer, block_data_index], &
                      first, field, status, message)
  end subroutine

  subroutine get_doubles(self, values, first, field, status, message)
    class(qelta_block), intent(in) :: self
    real(real64), intent(inout), contiguous, target :: values(:)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    call read_column(self, c_loc(values), size(values), [block_data_double, block_data_time], &
                     first, field, status, message)
  end subroutine

  subroutine set_doubles(self, values, first, field, status, message)
    class(qelta_block), intent(in) :: self
    real(real64), intent(in), contiguous, target :: values(:)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    call write_column(self, c_loc(values), size(values), [block_data_double, block_data_time], &
                      first, field, status, message)
  end subroutine

  subroutine get_floats(self, values, first, field, status, message)
    class(qelta_block), intent(in) :: self
    real(real32), intent(inout), contiguous, target :: values(:)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    call read_column(self, c_loc(values), size(values), [block_data_float], &
                     first, field, status, message)
  end subroutine

  subroutine set_floats(self, values, first, field, status, message)
    class(qelta_block), intent(in) :: self
    real(real32), intent(in), contiguous, target :: values(:)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    call write_column(self, c_loc(values), size(values), [block_data_float], &
                      first, field, status, message)
  end subroutine

  subroutine get_vectors(self, values, first, field, status, message)
    class(qelta_block), intent(in) :: self
    real(real64), intent(inout), contiguous, target :: values(:, :)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (.not. has_rows(values, 3, status, message)) return
    call read_column(self, c_loc(values), size(values, 2), [block_data_vector], &
                     first, field, status, message)
  end subroutine

  subroutine set_vectors(self, values, first, field, status, message)
    class(qelta_block), intent(in) :: self
    real(real64), intent(in), contiguous, target :: values(:, :)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (.not. has_rows(values, 3, status, message)) return
    call write_column(self, c_loc(values), size(values, 2), [block_data_vector], &
                      first, field, status, message)
  end subroutine

  subroutine get_tensors(self, values, first, field, status, message)
    class(qelta_block), intent(in) :: self
    real(real64), intent(inout), contiguous, target :: values(:, :)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (.not. has_rows(values, 6, status, message)) return
    call read_column(self, c_loc(values), size(values, 2), [block_data_tensor], &
                     first, field, status, message)
  end subroutine

  subroutine set_tensors(self, values, first, field, status, message)
    class(qelta_block), intent(in) :: self
    real(real64), intent(in), contiguous, target :: values(:, :)
    integer(int32), intent(in), optional :: first, field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (.not. has_rows(values, 6, status, message)) return
    call write_column(self, c_loc(values), size(values, 2), [block_data_tensor], &
                      first, field, status, message)
  end subroutine

  logical function has_rows(values, rows, status, message)
    real(real64), intent(in) :: values(:, :)
    integer, intent(in) :: rows
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    has_rows = size(values, 1) == rows
    if (has_rows) return
    call fail('The array must have the shape ('//number_text(rows)//', n), not ('// &
              number_text(size(values, 1))//', n).', status, message)
  end function

  !> Gives `record` a new cursor, all zero, in place of what it held.
  subroutine block_create_record(self, record, status, message)
    class(qelta_block), intent(in) :: self
    type(qelta_record), intent(inout) :: record
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32), allocatable :: types(:)
    type(c_ptr) :: block, cursor
    integer(int32) :: code
    if (.not. resolve(self, block, status, message)) return
    cursor = c_null_ptr
    call DataBlock_CreateRecord_F(block, cursor, code)
    call get_field_types(block, types)
    if (code == qelta_ok) call adopt_record(record, cursor, block, self%database, types)
    call conclude(code, status, message)
  end subroutine

  !> Fills the cursor with the record at the index.
  subroutine block_get_record(self, index, record, status, message)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(in) :: index
    type(qelta_record), intent(inout) :: record
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block, cursor
    integer(int32) :: code
    if (.not. resolve(self, block, status, message)) return
    if (.not. cursor_of(record, block, cursor, status, message)) return
    call DataBlock_GetRecord_F(block, index, cursor, code)
    call conclude(code, status, message)
  end subroutine

  !> Stores the cursor as the record at the index.
  subroutine block_set_record(self, index, record, status, message)
    class(qelta_block), intent(in) :: self
    integer(int32), intent(in) :: index
    type(qelta_record), intent(in) :: record
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: block, cursor
    integer(int32) :: code
    if (.not. resolve(self, block, status, message)) return
    if (.not. cursor_of(record, block, cursor, status, message)) return
    call DataBlock_SetRecord_F(block, index, cursor, code)
    call conclude(code, status, message)
  end subroutine
end module
