!> What cursors of blocks and of id views share: which fields a record has, and what they hold.
module qelta_fields
  use, intrinsic :: iso_c_binding, only: c_null_ptr, c_ptr
  use, intrinsic :: iso_fortran_env, only: int32
  use qelta_bindings, only: Block_GetFieldTypes_F
  use qelta_failures, only: fail, number_text
  use qelta_handles, only: field_count_of, field_type_of, is_open, object_of, ticket
  use qelta_kinds
  implicit none
  private
  public :: open_cursor, field_cursor, vector_cursor, is_vector_or_tensor, get_field_types
  public :: type_name, integer_types, double_types, int_list_types, double_list_types

  integer(int32), parameter :: &
    integer_types(2) = [block_data_integer, block_data_index], &
    double_types(2) = [block_data_double, block_data_time], &
    int_list_types(2) = [block_data_int_list, block_data_int_set], &
    double_list_types(1) = [block_data_double_list]

contains

  logical function open_cursor(held, cursor, status, message)
    type(ticket), intent(in) :: held
    type(c_ptr), intent(out) :: cursor
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    cursor = c_null_ptr
    open_cursor = is_open(held)
    if (open_cursor) then
      cursor = object_of(held)
    else
      call fail('The record has no cursor: none was created, it was released, its block was '// &
                'deleted, or its database closed.', status, message)
    end if
  end function

  !> The cursor, when it is open and the field is of one of the types.
  logical function field_cursor(held, field, types, cursor, status, message)
    type(ticket), intent(in) :: held
    integer(int32), intent(in) :: field, types(:)
    type(c_ptr), intent(out) :: cursor
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32) :: present_type
    field_cursor = open_cursor(held, cursor, status, message)
    if (.not. field_cursor) return
    present_type = field_type_of(held, field)
    field_cursor = any(present_type == types)
    if (field_cursor) return
    if (present_type == 0) then
      call fail('The record has the fields 1 to '//number_text(field_count_of(held))//', not '// &
                number_text(field)//'.', status, message)
    else
      call fail('Field '//number_text(field)//' of the record is '//type_name(present_type)// &
                ', not '//type_name(types(1))//'.', status, message)
    end if
  end function

  !> The cursor, when the field is a vector or tensor with as many values.
  logical function vector_cursor(held, field, number_of_values, cursor, status, message)
    type(ticket), intent(in) :: held
    integer(int32), intent(in) :: field
    integer, intent(in) :: number_of_values
    type(c_ptr), intent(out) :: cursor
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    cursor = c_null_ptr
    select case (number_of_values)
    case (3)
      vector_cursor = field_cursor(held, field, [block_data_vector], cursor, status, message)
    case (6)
      vector_cursor = field_cursor(held, field, [block_data_tensor], cursor, status, message)
    case default
      vector_cursor = .false.
      call fail('A vector has 3 values and a tensor 6, not '//number_text(number_of_values)// &
                '; lists have get_list and set_list.', status, message)
    end select
  end function

  logical function is_vector_or_tensor(number_of_values, status, message)
    integer, intent(in) :: number_of_values
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    is_vector_or_tensor = number_of_values == 3 .or. number_of_values == 6
    if (is_vector_or_tensor) return
    call fail('A vector has 3 values and a tensor 6, not '//number_text(number_of_values)//'.', &
              status, message)
  end function

  !> The types of a block's fields.
  subroutine get_field_types(block, types)
    type(c_ptr), intent(in) :: block
    integer(int32), allocatable, intent(out) :: types(:)
    integer(int32) :: none(1), count, code
    count = 0
    call Block_GetFieldTypes_F(block, 0, none, count, code)
    allocate (types(count))
    call Block_GetFieldTypes_F(block, count, types, count, code)
  end subroutine

  pure function type_name(field_type) result(name)
    integer(int32), intent(in) :: field_type
    character(:), allocatable :: name
    character(19), parameter :: names(block_data_time) = [character(19) :: 'an integer', &
      'a double', 'a float', 'a text', 'a vector', 'a tensor', 'a set of integers', &
      'a list of integers', 'a list of doubles', 'an index', 'a time or frequency']
    name = trim(names(field_type))
  end function
end module
