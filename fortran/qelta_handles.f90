!> The open databases and record cursors of the program, and who shares them. A handle variable
!> holds a ticket; a ticket whose object was released is dead wherever it was copied to, so nothing
!> is released twice, and a record never outlives its block or database.
module qelta_handles
  use, intrinsic :: iso_c_binding, only: c_associated, c_null_ptr, c_ptr
  use, intrinsic :: iso_fortran_env, only: int32, int64
  use qelta_bindings, only: Database_Close_F, DataBlock_DeleteRecord_F
  use qelta_kinds, only: qelta_ok
  implicit none
  private
  public :: ticket, register_database, register_record, is_open, object_of, block_of, share, drop
  public :: release, release_records_of_block, has_records, deletions_of, count_deletion
  public :: field_count_of, field_type_of

  type :: ticket
    integer :: slot = 0
    integer(int64) :: serial = 0
  end type

  type :: entry
    integer(int64) :: serial = 0  ! 0: free
    integer :: shares = 0
    type(c_ptr) :: object = c_null_ptr
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

  function register_database(object) result(new)
    type(c_ptr), intent(in) :: object
    type(ticket) :: new
    last_serial = last_serial + 1
    number_in_use = number_in_use + 1
    new = ticket(free_slot(), last_serial)
    entries(new%slot)%serial = new%serial
    entries(new%slot)%shares = 1
    entries(new%slot)%object = object
  end function

  !> The field types of the record come along, so that the variables that hold it stay plain.
  function register_record(object, block, database, types) result(new)
    type(c_ptr), intent(in) :: object, block
    type(ticket), intent(in) :: database
    integer(int32), intent(in) :: types(:)
    type(ticket) :: new
    new = register_database(object)
    entries(new%slot)%block = block
    entries(new%slot)%database = database
    entries(new%slot)%types = types
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

  pure logical function is_open(held)
    type(ticket), intent(in) :: held
    is_open = .false.
    if (held%slot == 0 .or. .not. allocated(entries)) return
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

  !> One more variable holds the ticket.
  subroutine share(held)
    type(ticket), intent(in) :: held
    if (is_open(held)) entries(held%slot)%shares = entries(held%slot)%shares + 1
  end subroutine

  !> One variable less holds it; the last one releases the object. The ticket is blank afterwards.
  subroutine drop(held)
    type(ticket), intent(inout) :: held
    integer(int32) :: ignored
    if (is_open(held)) then
      entries(held%slot)%shares = entries(held%slot)%shares - 1
      if (entries(held%slot)%shares <= 0) call release(held, ignored)
    end if
    held = ticket()
  end subroutine

  !> Releases an object now, and the records of a database before it. What refuses to close stays
  !> open.
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

  !> Releases the records of a database, or of one block of it.
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

  subroutine release_records_of_block(database, block)
    type(ticket), intent(in) :: database
    type(c_ptr), intent(in) :: block
    if (is_open(database)) call release_records(database, block)
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
    belongs = record%serial /= 0 .and. record%database%slot == database%slot &
              .and. record%database%serial == database%serial
  end function
end module
