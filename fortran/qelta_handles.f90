!> The open databases and record cursors of the program. A handle variable holds a ticket; the one
!> that an object was opened with owns it and releases it, all others look on. The owner is known by
!> its place in memory: compilers disagree on which copies they finalise, but a copy is never where
!> the owner is. A ticket whose object was released is dead wherever it was copied to, so nothing is
!> released twice, and a record never outlives its block or database.
module qelta_handles
  use, intrinsic :: iso_c_binding, only: c_associated, c_intptr_t, c_loc, c_null_ptr, c_ptr
  use, intrinsic :: iso_fortran_env, only: int32, int64
  use qelta_bindings, only: Database_Close_F, DataBlock_DeleteRecord_F
  use qelta_kinds, only: qelta_ok
  implicit none
  private
  public :: ticket, hold_database, hold_record, drop, look_on, is_open, release
  public :: object_of, block_of, field_count_of, field_type_of
  public :: release_records, has_records, deletions_of, count_deletion

  type :: ticket
    integer :: slot = 0
    integer(int64) :: serial = 0
  end type

  type :: entry
    integer(int64) :: serial = 0  ! 0: free
    type(c_ptr) :: object = c_null_ptr
    integer(c_intptr_t) :: owner = 0
    ! Of a record:
    type(c_ptr) :: block = c_null_ptr
    type(ticket) :: database
    integer(int32), allocatable :: types(:)
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
    call drop(held)
    last_serial = last_serial + 1
    number_in_use = number_in_use + 1
    held = ticket(free_slot(), last_serial)
    entries(held%slot)%serial = held%serial
    entries(held%slot)%object = object
    entries(held%slot)%owner = place_of(held)
  end subroutine

  !> Makes `held` the owner of a record cursor, in place of what it held.
  subroutine hold_record(held, object, block, database, types)
    type(ticket), intent(inout) :: held
    type(c_ptr), intent(in) :: object, block
    type(ticket), intent(in) :: database
    integer(int32), intent(in) :: types(:)
    call hold_database(held, object)
    entries(held%slot)%block = block
    entries(held%slot)%database = database
    entries(held%slot)%types = types
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

  !> The block of an open record.
  pure type(c_ptr) function block_of(held)
    type(ticket), intent(in) :: held
    block_of = entries(held%slot)%block
  end function

  !> The number of fields of a record; 0 when it is not open.
  pure integer function field_count_of(held)
    type(ticket), intent(in) :: held
    field_count_of = 0
    if (is_open(held)) field_count_of = size(entries(held%slot)%types)
  end function

  !> The type of a field that an open record has.
  pure integer(int32) function field_type_of(held, field)
    type(ticket), intent(in) :: held
    integer(int32), intent(in) :: field
    field_type_of = entries(held%slot)%types(field)
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

  !> Releases an object now, whoever owns it, and the records of a database before it. What refuses
  !> to close stays open.
  subroutine release(held, code)
    type(ticket), intent(in) :: held
    integer(int32), intent(out) :: code
    code = qelta_ok
    if (.not. is_open(held)) return
    if (c_associated(entries(held%slot)%block)) then
      call DataBlock_DeleteRecord_F(entries(held%slot)%block, entries(held%slot)%object, code)
    else
      call release_records(held)
      call Database_Close_F(entries(held%slot)%object, code)
    end if
    if (code == qelta_ok) call free(held%slot)
  end subroutine

  subroutine free(slot)
    integer, intent(in) :: slot
    entries(slot) = entry()
    number_in_use = number_in_use - 1
    if (number_in_use == 0) deallocate (entries)
  end subroutine

  !> Releases the records of an open database, or of one block of it.
  subroutine release_records(database, block)
    type(ticket), intent(in) :: database
    type(c_ptr), intent(in), optional :: block
    integer :: slot
    integer(int32) :: ignored
    do slot = 1, size(entries)
      if (.not. belongs(entries(slot), database)) cycle
      if (present(block)) then
        if (.not. c_associated(entries(slot)%block, block)) cycle
      end if
      call release(ticket(slot, entries(slot)%serial), ignored)
    end do
  end subroutine

  pure logical function has_records(database)
    type(ticket), intent(in) :: database
    integer :: slot
    has_records = .false.
    do slot = 1, size(entries)
      has_records = has_records .or. belongs(entries(slot), database)
    end do
  end function

  pure logical function belongs(record, database)
    type(entry), intent(in) :: record
    type(ticket), intent(in) :: database
    belongs = record%serial /= 0 .and. record%database%serial == database%serial
  end function
end module
