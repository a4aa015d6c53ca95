! Handles that are copied, dropped and outlived in every order. What this cannot see itself, a leak
! or a second release, a run under a memory checker does.
program ownership_test
  use, intrinsic :: iso_fortran_env, only: real64
  use checks
  use qelta
  implicit none

  type :: model  ! what a solver would do: handles inside a type of its own
    type(qelta_record) :: record
    type(qelta_database) :: db
    type(qelta_block), allocatable :: blocks(:)
  end type

  integer :: i
  do i = 1, 3
    call test_scope_end()
    call test_scope_end_the_other_way_round()
    call test_copied_database()
    call test_copied_record()
    call test_handles_inside_other_types()
    call test_sourced_copies()
  end do
  call test_open_failures()
  call test_use_after_close()
  call test_reopened_variable()
  call test_deletion_under_records()
  call test_deletion_by_pattern_and_alias()
  call finish()

contains

  subroutine fill(db, block)
    type(qelta_database), intent(inout) :: db
    type(qelta_block), intent(inout) :: block
    call db%open('memory', 'ownership')
    call db%fetch_block(qelta_descriptor(iteration=1, onf=onf_element_density), block)
    call block%set(0, 1.0_real64)
  end subroutine

  logical function alive(block)
    type(qelta_block), intent(in) :: block
    integer :: status
    real(real64) :: value
    call block%get(0, value, status)
    alive = status == qelta_ok
  end function

  subroutine test_scope_end()
    type(qelta_database) :: db
    type(qelta_block) :: block
    type(qelta_record) :: record
    call fill(db, block)
    call block%create_record(record)
    call check(record%is_open(), 'the record is open until the end')
  end subroutine

  subroutine test_scope_end_the_other_way_round()
    type(qelta_record) :: record
    type(qelta_block) :: block
    type(qelta_database) :: db
    call fill(db, block)
    call block%create_record(record)
    call block%create_record(record)
    call check(db%is_open(), 'the database is open until the end')
  end subroutine

  subroutine test_copied_database()
    type(qelta_database) :: db, copy
    type(qelta_block) :: block
    call open_for_a_while(copy, block)
    call check(.not. copy%is_open(), 'a copy does not outlive the owner')
    call check(.not. alive(block), 'nor does a block')
    call fill(db, block)
    copy = db
    db = db
    db = copy
    call check(alive(block), 'assignments in circles')
    copy = qelta_database()
    call check(alive(block), 'a copy goes and closes nothing')
    copy = db
    call copy%close()
    call db%close()
    call check(.not. db%is_open(), 'closing any closes it')
    call check(.not. alive(block), 'and its blocks')
  end subroutine

  subroutine open_for_a_while(copy, block)
    type(qelta_database), intent(inout) :: copy
    type(qelta_block), intent(inout) :: block
    type(qelta_database) :: db
    call fill(db, block)
    copy = db
    call check(alive(block), 'open for a while')
  end subroutine

  subroutine test_copied_record()
    type(qelta_database) :: db
    type(qelta_block) :: block
    type(qelta_record) :: one, two, none
    real(real64) :: value
    integer :: status
    call fill(db, block)
    call block%create_record(one)
    two = one
    call one%set(1, 5.0_real64)
    call two%get(1, value)
    call check(nint(value) == 5, 'copies look on at the cursor')
    two = none
    call one%get(1, value, status)
    call check(status == qelta_ok .and. .not. two%is_open(), 'the owner keeps it')
    two = one
    call two%release()
    call one%get(1, value, status)
    call check(status /= qelta_ok, 'released is released')
    call block%create_record(one)
    two = one
    one = none
    call two%get(1, value, status)
    call check(status /= qelta_ok, 'an owner with another value released it')
  end subroutine

  ! A copy of a type with handles inside goes through temporaries, which some compilers finalise
  ! although they are copies, or have no value at all.
  subroutine test_handles_inside_other_types()
    type(model), allocatable :: models(:)
    type(model) :: copy
    type(qelta_record), allocatable :: records(:)
    integer :: k
    allocate (models(3), records(10))
    do k = 1, 3
      allocate (models(k)%blocks(2))
      call fill(models(k)%db, models(k)%blocks(1))
      call models(k)%blocks(1)%create_record(models(k)%record)
    end do
    do k = 1, 10
      call models(2)%blocks(1)%create_record(records(k))
    end do
    call copy_model(copy, models(2))
    copy = models(2)
    call check(all([(models(k)%db%is_open(), k=1, 3)]), 'the databases stay open')
    call check(all([(records(k)%is_open(), k=1, 10)]), 'and the records')
    call check(copy%db%is_open() .and. copy%record%is_open(), 'a copied component looks on')
    call check(alive(copy%blocks(1)), 'a copied block')
    deallocate (models)
    call check(.not. (copy%db%is_open() .or. copy%record%is_open()), 'the owners are gone')
    call check(.not. any([(records(k)%is_open(), k=1, 10)]), 'and all records')
    deallocate (records)
  end subroutine

  subroutine copy_model(copy, original)
    type(model), intent(inout) :: copy
    type(model), intent(in) :: original
    copy = original
  end subroutine

  subroutine test_sourced_copies()
    type(qelta_database) :: db
    type(qelta_database), allocatable :: copy, moved
    type(qelta_record), allocatable :: records(:)
    type(qelta_record) :: record
    type(qelta_block) :: block
    call fill(db, block)
    call block%create_record(record)
    allocate (copy, source=db)
    allocate (records(2), source=[record, record])
    call move_alloc(copy, moved)
    call check(moved%is_open() .and. records(2)%is_open(), 'sourced copies look on')
    deallocate (moved, records)
    call check(db%is_open() .and. record%is_open(), 'and go without a trace')
  end subroutine

  subroutine test_open_failures()
    type(qelta_database) :: db
    character(1100) :: message
    integer :: status
    call db%open('papyrus', 'x', status=status, message=message)
    call check_failure(status, message, 'papyrus')
    call db%save(status, message)
    call check_failure(status, message, 'not open')
    call db%close()
    call db%open('memory ', 'x ', qelta_create, 1000000_8, status, message)
    call check(status == qelta_ok .and. db%is_open(), 'opened at last')
    call db%save()
  end subroutine

  subroutine test_use_after_close()
    type(qelta_database) :: db
    type(qelta_block) :: block, never
    type(qelta_record) :: record
    type(qelta_descriptor), allocatable :: keys(:)
    type(qelta_descriptor) :: key
    character(1100) :: message
    integer :: status, i
    logical :: has
    call fill(db, block)
    call block%create_record(record)
    call db%close()
    call db%open('memory', 'another in the same place')
    key = qelta_descriptor(iteration=1, onf=onf_element_density)
    call check(.not. block%is_open() .and. .not. record%is_open(), 'dead handles stay dead')
    i = block%max_index(status, message)
    call check_failure(status, message, 'database is closed')
    call record%set(1, 1.0_real64, status, message)
    call check_failure(status, message, 'database closed')
    i = never%max_index(status, message)
    call check_failure(status, message, 'never fetched')
    call db%close()
    has = db%has_block(key, status, message)
    call check_failure(status, message, 'not open')
    call db%find_blocks(qelta_pattern(), keys, status, message)
    call check_failure(status, message, 'not open')
    call db%fetch_block(key, block, status=status, message=message)
    call check_failure(status, message, 'not open')
    call db%delete_blocks(qelta_pattern(), status, message)
    call check_failure(status, message, 'not open')
    call db%delete_block(key, status, message)
    call check_failure(status, message, 'not open')
    call db%create_alias(key, key, status=status, message=message)
    call check_failure(status, message, 'not open')
  end subroutine

  subroutine test_reopened_variable()
    type(qelta_database) :: db, other
    type(qelta_block) :: first, second
    call fill(db, first)
    other = db
    call fill(db, second)
    call check(.not. alive(first), 'the first one is closed')
    call check(.not. other%is_open(), 'for all')
    call check(alive(second), 'the second one is open')
  end subroutine

  subroutine test_deletion_under_records()
    type(qelta_database) :: db
    type(qelta_block) :: block, other
    type(qelta_record) :: record, kept
    type(qelta_descriptor) :: key
    character(1100) :: message
    integer :: status, i
    call fill(db, block)
    key = block%descriptor()
    call db%fetch_block(qelta_descriptor(label='other'), other, 'I|d')
    call other%set(0, 2.0_real64)
    call block%create_record(record)
    call other%create_record(kept)
    call db%delete_block(qelta_descriptor(label='nobody'))
    call check(record%is_open(), 'nothing was deleted')
    call check(alive(block), 'still nothing')
    call db%delete_block(key)
    call check(.not. record%is_open() .and. kept%is_open(), 'its records go with a block')
    i = block%max_index(status, message)
    call check_failure(status, message, 'ITERATION=1/ONF=405 was deleted')
    call check(alive(other), 'other blocks stay')
    call db%fetch_block(key, block)
    call check(block%max_index() == -1, 'a new block under the old key')
  end subroutine

  subroutine test_deletion_by_pattern_and_alias()
    type(qelta_database) :: db
    type(qelta_block) :: block, others(9)
    type(qelta_record) :: record, records(9)
    integer :: k
    call fill(db, block)
    call block%create_record(record)
    do k = 1, 9
      call db%fetch_block(qelta_descriptor(iteration=k, onf=onf_displacement), others(k))
      call others(k)%create_record(records(k))
    end do
    call db%create_alias(qelta_descriptor(iteration=9, onf=onf_displacement), &
                         qelta_descriptor(label='last'))
    call db%delete_blocks(qelta_pattern(iteration=3))
    call check(.not. records(3)%is_open() .and. records(4)%is_open(), 'by pattern')
    call db%delete_block(qelta_descriptor(label='last'))
    call check(.not. records(9)%is_open() .and. records(8)%is_open(), 'by an alias')
    call check(.not. db%has_block(qelta_descriptor(iteration=9, onf=onf_displacement)), 'alias')
    call db%delete_blocks(qelta_pattern(onf=onf_displacement))
    call check(.not. any([(records(k)%is_open(), k=1, 9)]), 'all of a kind')
    call check(record%is_open(), 'a record of another kind stays')
    call check(alive(block), 'another kind stays')
  end subroutine
end program
