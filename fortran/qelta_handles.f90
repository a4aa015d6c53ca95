!> The open databases, id views and record cursors of the program. A handle variable holds a ticket;
!> the one that an object was opened with owns it and releases it, all others look on. The owner is
!> known by its place in memory: compilers disagree on which copies they finalise, but a copy is
!> never where the owner is. A ticket whose object was released is dead wherever it was copied to,
!> so nothing is released twice, and nothing outlives its parent: records and views their block and
!> database, records of a view the view.
module qelta_handles
  use, intrinsic :: iso_c_binding, only: c_associated, c_intptr_t, c_loc, c_null_ptr, c_ptr
  use, intrinsic :: iso_fortran_env, only: int32, int64
  use qelta_bindings, only: Database_Close_F, DataBlock_DeleteRecord_F
  use qelta_id_bindings, only: IdView_Delete_F, IdView_DeleteRecord_F
  use qelta_kinds, only: id_type_record_index, qelta_ok
  implicit none
  private
  public :: ticket, hold_database, hold_record, hold_view, hold_view_record
  public :: drop, look_on, is_open, release, object_of, block_of, is_child
  public :: field_count_of, field_type_of, id_type_of
  public :: release_children, has_children, deletions_of, count_deletion

  integer, parameter :: a_database = 1, a_record = 2, a_view = 3, a_view_record = 4

  type :: ticket
    integer :: slot = 0
    integer(int64) :: serial = 0
  end type

  type :: entry
    integer(int64) :: serial = 0  ! 0: free
    integer :: kind = 0
    type(c_ptr) :: object = c_null_ptr
    integer(c_intptr_t) :: owner = 0
    ! Of what is no database: the database, or the view that a record belongs to.
    type(ticket) :: parent
    type(c_ptr) :: block = c_null_ptr
    integer(int32), allocatable :: types(:), id_types(:)
    ! Of a database: how often blocks were deleted.
    integer :: deletions = 0
  end type

  type(entry), allocatable, save :: entries(:)
  integer(int64), save :: last_serial = 0
  integer, save :: number_in_use = 0

contains

  !> Makes `held` the owner of an open database, in place of what it held.
  subroutine hold_database(held, object)
    type(ticket), intent(inout) :: held
    type(c_ptr), intent(in) :: object
    call hold(held, object, a_database)
  end subroutine

  !> Makes `held` the owner of a record cursor, in place of what it held.
  subroutine hold_record(held, object, block, database, types)
    type(ticket), intent(inout) :: held
    type(c_ptr), intent(in) :: object, block
    type(ticket), intent(in) :: database
    integer(int32), intent(in) :: types(:)
    call hold(held, object, a_record)
    call set_parent(entries(held%slot), database, block, types)
  end subroutine

  !> Makes `held` the owner of an id view, in place of what it held. `id_types` are those of the
  !> records and of their fields.
  subroutine hold_view(held, object, block, database, types, id_types)
    type(ticket), intent(inout) :: held
    type(c_ptr), intent(in) :: object, block
    type(ticket), intent(in) :: database
    integer(int32), intent(in) :: types(:), id_types(:)
    call hold(held, object, a_view)
    call set_parent(entries(held%slot), database, block, types, id_types)
  end subroutine

  !> Makes `held` the owner of a record cursor of a view, in place of what it held.
  subroutine hold_view_record(held, object, view)
    type(ticket), intent(inout) :: held
    type(c_ptr), intent(in) :: object
    type(ticket), intent(in) :: view
    call hold(held, object, a_view_record)
    call set_parent(entries(held%slot), view, entries(view%slot)%block, entries(view%slot)%types, &
                    entries(view%slot)%id_types)
  end subroutine

  subroutine hold(held, object, kind)
    type(ticket), intent(inout) :: held
    type(c_ptr), intent(in) :: object
    integer, intent(in) :: kind
    call drop(held)
    last_serial = last_serial + 1
    number_in_use = number_in_use + 1
    held = ticket(free_slot(), last_serial)
    entries(held%slot)%serial = held%serial
    entries(held%slot)%kind = kind
    entries(held%slot)%object = object
    entries(held%slot)%owner = place_of(held)
  end subroutine

  subroutine set_parent(child, parent, block, types, id_types)
    type(entry), intent(inout) :: child
    type(ticket), intent(in) :: parent
    type(c_ptr), intent(in) :: block
    integer(int32), intent(in) :: types(:)
    integer(int32), intent(in), optional :: id_types(:)
    child%parent = parent
    child%block = block
    child%types = types
    if (present(id_types)) child%id_types = id_types
  end subroutine

  !> Releases what `held` owns, and blanks it.
  subroutine drop(held)
    type(ticket), intent(inout) :: held
    integer(int32) :: ignored
    if (is_open(held)) then
      if (entries(held%slot)%owner == place_of(held)) call release(held, ignored)
    end if
    held = ticket()
  end subroutine

  !> Makes `held` look on at what another variable holds, in place of what it held.
  subroutine look_on(held, other)
    type(ticket), intent(inout) :: held
    type(ticket), intent(in) :: other
    if (held%serial == other%serial) return
    call drop(held)
    held = other
  end subroutine

  integer(c_intptr_t) function place_of(held)
    type(ticket), intent(in), target :: held
    place_of = transfer(c_loc(held%slot), place_of)
  end function

  function free_slot() result(slot)
    integer :: slot
    type(entry), allocatable :: more(:)
    if (.not. allocated(entries)) allocate (entries(8))
    do slot = 1, size(entries)
      if (entries(slot)%serial == 0) return
    end do
    allocate (more(2*size(entries)))
    more(:size(entries)) = entries
    call move_alloc(more, entries)
  end function

  ! A compiler may finalise a variable that was never given a value, so any number may come.
  pure logical function is_open(held)
    type(ticket), intent(in) :: held
    is_open = .false.
    if (held%slot < 1 .or. held%serial < 1 .or. .not. allocated(entries)) return
    if (held%slot <= size(entries)) is_open = entries(held%slot)%serial == held%serial
  end function

  !> The object of an open ticket.
  pure type(c_ptr) function object_of(held)
    type(ticket), intent(in) :: held
    object_of = entries(held%slot)%object
  end function

  !> The block of an open record or view.
  pure type(c_ptr) function block_of(held)
    type(ticket), intent(in) :: held
    block_of = entries(held%slot)%block
  end function

  !> Whether an open object belongs to another.
  pure logical function is_child(held, parent)
    type(ticket), intent(in) :: held, parent
    is_child = belongs(entries(held%slot), parent)
  end function

  !> The number of fields of a record; 0 when it is not open.
  pure integer function field_count_of(held)
    type(ticket), intent(in) :: held
    field_count_of = 0
    if (is_open(held)) field_count_of = size(entries(held%slot)%types)
  end function

  !> The type of a field of a record, or 0 where there is no such field.
  pure integer(int32) function field_type_of(held, field)
    type(ticket), intent(in) :: held
    integer(int32), intent(in) :: field
    field_type_of = 0
    if (1 <= field .and. field <= field_count_of(held)) then
      field_type_of = entries(held%slot)%types(field)
    end if
  end function

  !> What a field of a view's record refers to, or with 0 the record itself.
  pure integer(int32) function id_type_of(held, field)
    type(ticket), intent(in) :: held
    integer(int32), intent(in) :: field
    id_type_of = id_type_record_index
    if (is_open(held) .and. 0 <= field .and. field <= field_count_of(held)) then
      id_type_of = entries(held%slot)%id_types(field + 1)
    end if
  end function

  !> How often blocks of an open database were deleted.
  pure integer function deletions_of(held)
    type(ticket), intent(in) :: held
    deletions_of = entries(held%slot)%deletions
  end function

  subroutine count_deletion(held)
    type(ticket), intent(in) :: held
    entries(held%slot)%deletions = entries(held%slot)%deletions + 1
  end subroutine

  !> Releases an object now, whoever owns it, and what belongs to it before. What refuses to close
  !> stays open.
  recursive subroutine release(held, code)
    type(ticket), intent(in) :: held
    integer(int32), intent(out) :: code
    code = qelta_ok
    if (.not. is_open(held)) return
    select case (entries(held%slot)%kind)
    case (a_database)
      call release_children(held)
      call Database_Close_F(entries(held%slot)%object, code)
    case (a_record)
      call DataBlock_DeleteRecord_F(block_of(held), entries(held%slot)%object, code)
    case (a_view)
      call release_children(held)
      call IdView_Delete_F(entries(held%slot)%object, code)
    case (a_view_record)
      call IdView_DeleteRecord_F(object_of(entries(held%slot)%parent), &
                                 entries(held%slot)%object, code)
    end select
    if (code == qelta_ok) call free(held%slot)
  end subroutine

  subroutine free(slot)
    integer, intent(in) :: slot
    entries(slot) = entry()
    number_in_use = number_in_use - 1
    if (number_in_use == 0) deallocate (entries)
  end subroutine

  !> Releases what belongs to an open object, or that of it which is of one block.
  recursive subroutine release_children(parent, block)
    type(ticket), intent(in) :: parent
    type(c_ptr), intent(in), optional :: block
    integer :: slot
    integer(int32) :: ignored
    do slot = 1, size(entries)
      if (.not. belongs(entries(slot), parent)) cycle
      if (present(block)) then
        if (.not. c_associated(entries(slot)%block, block)) cycle
      end if
      call release(ticket(slot, entries(slot)%serial), ignored)
    end do
  end subroutine

  pure logical function has_children(parent)
    type(ticket), intent(in) :: parent
    integer :: slot
    has_children = .false.
    do slot = 1, size(entries)
      has_children = has_children .or. belongs(entries(slot), parent)
    end do
  end function

  pure logical function belongs(child, parent)
    type(entry), intent(in) :: child
    type(ticket), intent(in) :: parent
    belongs = child%serial /= 0 .and. child%parent%serial == parent%serial
  end function
end module
