!> Id views: blocks whose records are found by external id or name.
module qelta_id_views
  use, intrinsic :: iso_c_binding, only: c_null_ptr, c_ptr
  use, intrinsic :: iso_fortran_env, only: int32, real64
  use qelta_blocks, only: find_block, qelta_block
  use qelta_failures, only: conclude, fail, for_c
  use qelta_fields, only: get_field_types, is_vector_or_tensor
  use qelta_handles, only: drop, hold_view, is_open, look_on, object_of, release, ticket
  use qelta_id_bindings
  use qelta_id_records, only: adopt_record, cursor_of, qelta_id_record
  use qelta_kinds, only: qelta_ok
  implicit none
  private
  public :: qelta_id_view

  !> A view of a block through the id maps of its database. Names find the records of kinds such as
  !> node groups and materials, ids those of all; a custom block has indices for ids. Writing a
  !> record under an id or name that the map does not know registers it, reading fails.
  !>
  !> The variable that opened a view owns it: it is released, and its records with it, when that
  !> variable ends or is given another value, on `release` of any, and when its block is deleted or
  !> its database closed, after which it fails. Variables assigned from the owner look on.
  type :: qelta_id_view
    private
    type(ticket) :: view
  contains
    procedure :: open => view_open
    !> has_record(id), has_record(name): false also where the id or name is not known.
    generic :: has_record => has_record_by_id, has_record_by_name
    !> get(id, value), set(id, value), or with a name: a double, or 3 or 6 doubles, in the first such
    !> field.
    generic :: get => get_scalar, get_components, get_scalar_by_name, get_components_by_name
    generic :: set => set_scalar, set_components, set_scalar_by_name, set_components_by_name
    procedure :: create_record => view_create_record
    !> get_record(id, record), get_record(name, record): fills the cursor.
    generic :: get_record => get_record_by_id, get_record_by_name
    !> set_record(id, record), set_record(name, record): stores the cursor.
    generic :: set_record => set_record_by_id, set_record_by_name
    procedure :: is_open => view_is_open
    procedure :: release => view_release
    generic :: assignment(=) => assign_view
    procedure, private :: has_record_by_id, has_record_by_name
    procedure, private :: get_scalar, get_components, set_scalar, set_components
    procedure, private :: get_scalar_by_name, get_components_by_name
    procedure, private :: set_scalar_by_name, set_components_by_name
    procedure, private :: get_record_by_id, get_record_by_name
    procedure, private :: set_record_by_id, set_record_by_name
    procedure, private :: assign_view
    final :: finalise_view
  end type

contains

  !> Opens a view of a block in place of what the variable held.
  subroutine view_open(self, block, status, message)
    class(qelta_id_view), intent(inout) :: self
    type(qelta_block), intent(in) :: block
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32), allocatable :: types(:), id_types(:)
    type(ticket) :: database
    type(c_ptr) :: address, view
    integer(int32) :: count, code
    if (.not. find_block(block, address, database, status, message)) return
    view = c_null_ptr
    call IdView_New_F(object_of(database), address, view, code)
    if (code == qelta_ok) then
      call get_field_types(address, types)
      allocate (id_types(size(types) + 1))
      call IdView_GetIdTypes_F(view, size(id_types), id_types, count, code)
      call hold_view(self%view, view, address, database, types, id_types)
    end if
    call conclude(code, status, message)
  end subroutine

  logical function resolve(self, view, status, message)
    class(qelta_id_view), intent(in) :: self
    type(c_ptr), intent(out) :: view
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    view = c_null_ptr
    resolve = is_open(self%view)
    if (resolve) then
      view = object_of(self%view)
    else
      call fail('The view is not open: it was never opened, it was released, its block was '// &
                'deleted, or its database closed.', status, message)
    end if
  end function

  logical function has_record_by_id(self, id, status, message) result(has_record)
    class(qelta_id_view), intent(in) :: self
    integer(int32), intent(in) :: id
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view
    integer(int32) :: has, code
    has_record = .false.
    if (.not. resolve(self, view, status, message)) return
    has = 0
    call IdView_HasRecord_F(view, id, has, code)
    has_record = has == 1
    call conclude(code, status, message)
  end function

  logical function has_record_by_name(self, name, status, message) result(has_record)
    class(qelta_id_view), intent(in) :: self
    character(*), intent(in) :: name
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view
    integer(int32) :: has, code
    has_record = .false.
    if (.not. resolve(self, view, status, message)) return
    has = 0
    call IdView_HasRecord_Name_F(view, for_c(trim(name)), has, code)
    has_record = has == 1
    call conclude(code, status, message)
  end function

  subroutine get_scalar(self, id, value, status, message)
    class(qelta_id_view), intent(in) :: self
    integer(int32), intent(in) :: id
    real(real64), intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view
    integer(int32) :: code
    if (.not. resolve(self, view, status, message)) return
    call IdView_GetScalar_F(view, id, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine set_scalar(self, id, value, status, message)
    class(qelta_id_view), intent(in) :: self
    integer(int32), intent(in) :: id
    real(real64), intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view
    integer(int32) :: code
    if (.not. resolve(self, view, status, message)) return
    call IdView_SetScalar_F(view, id, value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_components(self, id, values, status, message)
    class(qelta_id_view), intent(in) :: self
    integer(int32), intent(in) :: id
    real(real64), intent(inout), contiguous :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view
    integer(int32) :: code
    if (.not. is_vector_or_tensor(size(values), status, message)) return
    if (.not. resolve(self, view, status, message)) return
    if (size(values) == 3) then
      call IdView_GetVector_F(view, id, values, code)
    else
      call IdView_GetTensor_F(view, id, values, code)
    end if
    call conclude(code, status, message)
  end subroutine

  subroutine set_components(self, id, values, status, message)
    class(qelta_id_view), intent(in) :: self
    integer(int32), intent(in) :: id
    real(real64), intent(in), contiguous :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view
    integer(int32) :: code
    if (.not. is_vector_or_tensor(size(values), status, message)) return
    if (.not. resolve(self, view, status, message)) return
    if (size(values) == 3) then
      call IdView_SetVector_F(view, id, values, code)
    else
      call IdView_SetTensor_F(view, id, values, code)
    end if
    call conclude(code, status, message)
  end subroutine

  subroutine get_scalar_by_name(self, name, value, status, message)
    class(qelta_id_view), intent(in) :: self
    character(*), intent(in) :: name
    real(real64), intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view
    integer(int32) :: code
    if (.not. resolve(self, view, status, message)) return
    call IdView_GetScalar_Name_F(view, for_c(trim(name)), value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine set_scalar_by_name(self, name, value, status, message)
    class(qelta_id_view), intent(in) :: self
    character(*), intent(in) :: name
    real(real64), intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view
    integer(int32) :: code
    if (.not. resolve(self, view, status, message)) return
    call IdView_SetScalar_Name_F(view, for_c(trim(name)), value, code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_components_by_name(self, name, values, status, message)
    class(qelta_id_view), intent(in) :: self
    character(*), intent(in) :: name
    real(real64), intent(inout), contiguous :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view
    integer(int32) :: code
    if (.not. is_vector_or_tensor(size(values), status, message)) return
    if (.not. resolve(self, view, status, message)) return
    if (size(values) == 3) then
      call IdView_GetVector_Name_F(view, for_c(trim(name)), values, code)
    else
      call IdView_GetTensor_Name_F(view, for_c(trim(name)), values, code)
    end if
    call conclude(code, status, message)
  end subroutine

  subroutine set_components_by_name(self, name, values, status, message)
    class(qelta_id_view), intent(in) :: self
    character(*), intent(in) :: name
    real(real64), intent(in), contiguous :: values(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view
    integer(int32) :: code
    if (.not. is_vector_or_tensor(size(values), status, message)) return
    if (.not. resolve(self, view, status, message)) return
    if (size(values) == 3) then
      call IdView_SetVector_Name_F(view, for_c(trim(name)), values, code)
    else
      call IdView_SetTensor_Name_F(view, for_c(trim(name)), values, code)
    end if
    call conclude(code, status, message)
  end subroutine

  !> Gives `record` a new cursor, all zero, in place of what it held.
  subroutine view_create_record(self, record, status, message)
    class(qelta_id_view), intent(in) :: self
    type(qelta_id_record), intent(inout) :: record
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view, cursor
    integer(int32) :: code
    if (.not. resolve(self, view, status, message)) return
    cursor = c_null_ptr
    call IdView_CreateRecord_F(view, cursor, code)
    if (code == qelta_ok) call adopt_record(record, cursor, self%view)
    call conclude(code, status, message)
  end subroutine

  subroutine get_record_by_id(self, id, record, status, message)
    class(qelta_id_view), intent(in) :: self
    integer(int32), intent(in) :: id
    type(qelta_id_record), intent(inout) :: record
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view, cursor
    integer(int32) :: code
    if (.not. resolve(self, view, status, message)) return
    if (.not. cursor_of(record, self%view, cursor, status, message)) return
    call IdView_GetRecord_F(view, id, cursor, code)
    call conclude(code, status, message)
  end subroutine

  subroutine get_record_by_name(self, name, record, status, message)
    class(qelta_id_view), intent(in) :: self
    character(*), intent(in) :: name
    type(qelta_id_record), intent(inout) :: record
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view, cursor
    integer(int32) :: code
    if (.not. resolve(self, view, status, message)) return
    if (.not. cursor_of(record, self%view, cursor, status, message)) return
    call IdView_GetRecord_Name_F(view, for_c(trim(name)), cursor, code)
    call conclude(code, status, message)
  end subroutine

  subroutine set_record_by_id(self, id, record, status, message)
    class(qelta_id_view), intent(in) :: self
    integer(int32), intent(in) :: id
    type(qelta_id_record), intent(in) :: record
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view, cursor
    integer(int32) :: code
    if (.not. resolve(self, view, status, message)) return
    if (.not. cursor_of(record, self%view, cursor, status, message)) return
    call IdView_SetRecord_F(view, id, cursor, code)
    call conclude(code, status, message)
  end subroutine

  subroutine set_record_by_name(self, name, record, status, message)
    class(qelta_id_view), intent(in) :: self
    character(*), intent(in) :: name
    type(qelta_id_record), intent(in) :: record
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: view, cursor
    integer(int32) :: code
    if (.not. resolve(self, view, status, message)) return
    if (.not. cursor_of(record, self%view, cursor, status, message)) return
    call IdView_SetRecord_Name_F(view, for_c(trim(name)), cursor, code)
    call conclude(code, status, message)
  end subroutine

  pure logical function view_is_open(self)
    class(qelta_id_view), intent(in) :: self
    view_is_open = is_open(self%view)
  end function

  subroutine view_release(self, status, message)
    class(qelta_id_view), intent(inout) :: self
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32) :: code
    call release(self%view, code)
    call conclude(code, status, message)
  end subroutine

  impure elemental subroutine assign_view(self, other)
    class(qelta_id_view), intent(inout) :: self
    type(qelta_id_view), intent(in) :: other
    call look_on(self%view, other%view)
  end subroutine

  impure elemental subroutine finalise_view(self)
    type(qelta_id_view), intent(inout) :: self
    call drop(self%view)
  end subroutine
end module
