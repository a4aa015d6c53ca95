! The maps between ids, names and indices, and copies between databases that number differently.
program ids_test
  use, intrinsic :: iso_fortran_env, only: real64
  use checks
  use numbered
  use qelta
  implicit none
  call test_maps()
  call test_names_of_maps()
  call test_maps_that_fail()
  call test_copies_by_id()
  call test_copies_that_fail()
  call test_empty_blocks()
  call finish()

contains

  subroutine test_maps()
    type(qelta_database) :: db
    integer :: k
    call open_numbered(db, 'maps', .true.)
    call check(db%max_id_index(id_type_node) == n + 4, 'the highest index')
    call check(db%max_id_index(id_type_element) == -1, 'of an empty map')
    call check(all([(db%index_of_id(id_type_node, ids(k)) == n + 5 - k, k=1, n)]), 'from ids')
    call check(all([(db%id_of_index(id_type_node, n + 5 - k) == ids(k), k=1, n)]), 'to ids')
    call check(all([(db%id_of_index(id_type_node, k - 1) == others(k), k=1, 5)]), 'what precedes')
    call db%add_ids(id_type_node, ids(n:1:-1), first_index=5)
    call db%add_ids(id_type_node, ids(:0), first_index=-1)
    call check(db%max_id_index(id_type_node) == n + 4, 'repeated and empty registrations')
  end subroutine

  subroutine test_names_of_maps()
    type(qelta_database) :: db
    character(:), allocatable :: name
    call db%open('memory', 'names')
    call db%add_name(id_type_material, 0, 30, 'steel, 4 mm  ')
    call db%add_name(id_type_material, 2, 10, repeat('long ', 300)//'name')
    call check(db%index_of_name(id_type_material, 'steel, 4 mm') == 0, 'without trailing blanks')
    call check(db%index_of_id(id_type_material, 10) == 2, 'the id of a named entity')
    name = db%name_of_index(id_type_material, 0)
    call check(name == 'steel, 4 mm' .and. len(name) == 11, 'a name has its length')
    name = db%name_of_index(id_type_material, 2)
    call check(len(name) == 1504, 'a long one too')
    call check(db%index_of_name(id_type_material, name) == 2, 'and is found')
  end subroutine

  subroutine test_maps_that_fail()
    type(qelta_database) :: db, closed
    character(1100) :: message
    character(:), allocatable :: name
    integer :: status, number
    call open_numbered(db, 'failing maps', .false.)
    number = db%index_of_id(id_type_node, 5, status, message)
    call check_failure(status, message, 'does not know the id 5')
    call check(number == -1, 'no index')
    number = db%id_of_index(id_type_node, n, status, message)
    call check_failure(status, message, 'nothing at index 40')
    name = db%name_of_index(id_type_node, 3, status, message)
    call check_failure(status, message, 'no name at index 3')
    call check(len(name) == 0, 'no name')
    number = db%index_of_name(id_type_node, 'nobody', status, message)
    call check_failure(status, message, 'nobody')
    number = db%max_id_index(16, status, message)
    call check_failure(status, message, '16')
    call db%add_ids(id_type_node, [1], -1, status, message)
    call check_failure(status, message, 'index -1')
    call db%add_name(id_type_material, 0, 1, 'steel')
    call db%add_name(id_type_material, 1, 2, 'steel', status, message)
    call check_failure(status, message, 'steel')
    call closed%add_ids(id_type_node, [1], status=status, message=message)
    call check_failure(status, message, 'not open')
  end subroutine

  subroutine test_copies_by_id()
    type(qelta_database) :: one, two
    type(qelta_block) :: block
    type(qelta_id_view) :: view
    real(real64) :: column(3, n), vector(3)
    integer :: k, iteration, copied
    call open_numbered(one, 'one', .false.)
    call open_numbered(two, 'two', .true.)
    column = reshape([(displacement(ids(k)), k=1, n)], [3, n])
    do iteration = 1, 3
      call one%fetch_block(qelta_descriptor(iteration=iteration, onf=onf_displacement), block)
      call block%set_vectors(iteration*column)
      call one%fetch_block(qelta_descriptor(iteration=iteration, onf=onf_temperature), block)
      call block%set(5, 1.0_real64*iteration)
    end do
    call one%copy_blocks(two, qelta_pattern(onf=onf_displacement), copied=copied)
    call check(copied == 3, 'blocks of one kind')
    call check(.not. two%has_block(qelta_descriptor(iteration=1, onf=onf_temperature)), 'no others')
    call open_view(two, qelta_descriptor(iteration=3, onf=onf_displacement), view)
    do k = 1, n
      call view%get(ids(k), vector)
      call check(same(vector, 3*column(:, k)), 'a copied vector by id')
    end do
    call check(.not. any([(view%has_record(others(k)), k=1, 5)]), 'and nowhere else')
  end subroutine

  subroutine test_copies_that_fail()
    type(qelta_database) :: one, two, closed
    type(qelta_block) :: block
    character(1100) :: message
    integer :: status, copied
    copied = 42
    call open_numbered(one, 'one', .false.)
    call two%open('memory', 'two')
    call one%fetch_block(qelta_descriptor(iteration=1, onf=onf_temperature), block)
    call block%set(n, 3.5_real64)
    call one%copy_blocks(two, qelta_pattern(), copied=copied, status=status, message=message)
    call check_failure(status, message, 'nothing at index 40')
    call check(copied == 42, 'a failed copy leaves the number alone')
    call one%copy_blocks(closed, qelta_pattern(), status=status, message=message)
    call check_failure(status, message, 'not open')
    call closed%copy_blocks(one, qelta_pattern(), status=status, message=message)
    call check_failure(status, message, 'not open')
  end subroutine

  subroutine test_empty_blocks()
    type(qelta_database) :: one, two
    type(qelta_descriptor) :: key
    type(qelta_block) :: block
    integer :: copied
    call one%open('memory', 'one')
    call two%open('memory', 'two')
    key = qelta_descriptor(label='empty')
    call one%fetch_block(key, block, 'I|d')
    call one%copy_blocks(two, qelta_pattern(), copied=copied)
    call check(.not. two%has_block(key), 'empty blocks are left out')
    call check(copied == 0, 'and not counted')
    call one%copy_blocks(two, qelta_pattern(), copy_empty=.true., copied=copied)
    call check(two%has_block(key), 'or copied')
    call check(copied == 1, 'and counted')
  end subroutine
end program
