! Records by id and name. Handles are copied and dropped in every order; what this cannot see
! itself, a leak or a second release, a run under a memory checker does.
program id_views_test
  use, intrinsic :: iso_fortran_env, only: real64
  use checks
  use numbered
  use qelta
  implicit none
  integer :: i
  call test_values_by_id()
  call test_fields_by_id()
  call test_fields_by_name()
  call test_sets_and_lists()
  call test_custom_blocks()
  call test_views_that_fail()
  call test_records_that_fail()
  do i = 1, 3
    call test_copied_views()
    call test_release_in_any_order()
    call test_deletion_under_views()
  end do
  call finish()

contains

  subroutine test_values_by_id()
    type(qelta_database) :: db
    type(qelta_block) :: block
    type(qelta_id_view) :: view
    real(real64) :: scalar, vector(3), tensor(6), tensors(6, n), wide(2, 6)
    integer :: k
    call open_numbered(db, 'values', .true.)
    call open_view(db, qelta_descriptor(onf=onf_temperature), view)
    call view%set(ids(7), 21.5_real64)
    call view%set(5, 10.5_real64)
    call check(db%index_of_id(id_type_node, 5) == n + 5, 'an id that is new')
    call view%get(ids(7), scalar)
    call check(same([scalar], [21.5_real64]), 'a scalar')
    call check(view%has_record(ids(7)), 'has a record')
    call check(.not. view%has_record(ids(8)), 'has none')
    call check(.not. view%has_record(12345), 'an id that is not known has none')
    call open_view(db, qelta_descriptor(onf=onf_displacement), view)
    do k = 1, n
      call view%set(ids(k), displacement(ids(k)))
    end do
    call db%fetch_block(qelta_descriptor(onf=onf_displacement), block)
    call block%get(n + 4, vector)
    call check(same(vector, displacement(ids(1))), 'the first id is at the last index')
    call check(block%max_index() == n + 4, 'none behind')
    call check(.not. block%has_record(4), 'none before')
    wide = 0
    call random_number(tensors)
    call db%fetch_block(qelta_descriptor(onf=onf_nodal_stress), block)
    call block%set_tensors(tensors, first=5)
    call view%open(block)
    call view%get(ids(n), tensor)
    call check(same(tensor, tensors(:, 1)), 'a tensor')
    call view%get(ids(n - 1), wide(2, :))
    call check(same(wide(2, :), tensors(:, 2)), 'a tensor into a section')
    call view%set(ids(n - 2), wide(2, 6:1:-1))
    call block%get(7, tensor)
    call check(same(tensor, tensors(6:1:-1, 2)), 'a tensor from a section')
  end subroutine

  subroutine test_fields_by_id()
    type(qelta_database) :: db
    type(qelta_id_view) :: view
    type(qelta_id_record) :: record
    type(qelta_block) :: block
    type(qelta_record) :: bare
    integer, allocatable :: nodes(:)
    integer :: shape
    call open_numbered(db, 'elements', .true.)
    call db%add_ids(id_type_element, [500, 400, 300])
    call open_view(db, qelta_descriptor(onf=onf_element_topology), view)
    call view%create_record(record)
    call check(record%field_count() == 2 .and. record%field_type(2) == block_data_int_list &
               .and. record%field_type(3) == 0, 'the layout')
    call check(record%id_type(0) == id_type_element .and. record%id_type(2) == id_type_node, &
               'references')
    call check(all([record%id_type(1), record%id_type(3), record%id_type(-1)] &
                   == id_type_record_index), 'plain numbers')
    call record%set(1, 9)
    call record%set_list(2, ids([1, 4, 40, 1]))
    call view%set_record(300, record)
    call record%set(1, 5)
    call record%set_list(2, [ids(2), 88888])
    call view%set_record(77, record)
    call check(db%index_of_id(id_type_element, 77) == 3, 'a new element')
    call check(db%index_of_id(id_type_node, 88888) == n + 5, 'a new node')
    call view%get_record(300, record)
    call record%get(1, shape)
    call record%get_list(2, nodes)
    call check(shape == 9 .and. size(nodes) == 4, 'a shape')
    call check(all(nodes == ids([1, 4, 40, 1])), 'and nodes by id')
    call db%fetch_block(qelta_descriptor(onf=onf_element_topology), block)
    call block%create_record(bare)
    call block%get_record(2, bare)
    call bare%get_list(2, nodes)
    call check(all(nodes == [44, 41, 5, 44]), 'which are indices in the block')
  end subroutine

  subroutine test_fields_by_name()
    type(qelta_database) :: db
    type(qelta_id_view) :: materials, properties
    type(qelta_id_record) :: material, property
    character(:), allocatable :: text
    integer :: id
    call db%open('memory', 'named')
    call db%add_name(id_type_material, 4, 17, 'copper')
    call open_view(db, qelta_descriptor(onf=onf_material), materials)
    call materials%create_record(material)
    call material%set(1, 'E = 210 GPa ')
    call materials%set_record('steel  ', material)
    call material%set(1, '')
    call materials%set_record('copper', material)
    call check(db%index_of_name(id_type_material, 'steel') == 5, 'a new name')
    call open_view(db, qelta_descriptor(onf=onf_property), properties)
    call properties%create_record(property)
    call property%set(1, 'shell')
    call property%set(2, 'copper   ')
    call properties%set_record('wall', property)
    call property%set(2, db%id_of_index(id_type_material, 5))
    call properties%set_record('floor', property)
    call properties%get_record('wall', property)
    call property%get(2, text)
    call property%get(2, id)
    call check(text == 'copper' .and. len(text) == 6 .and. id == 17, 'a reference both ways')
    call properties%get_record(db%id_of_index(id_type_property, 1), property)
    call property%get(2, text)
    call check(text == 'steel', 'a record of a named kind by its id')
    call materials%get_record(text, material)
    call material%get(1, text)
    call check(len(text) == 12 .and. text == 'E = 210 GPa', 'a text keeps its blanks')
    call materials%get_record('copper', material)
    call material%get(1, text)
    call check(len(text) == 0, 'an empty text')
    call check(materials%has_record('steel '), 'a known name')
    call check(.not. materials%has_record('wood'), 'one that is not known')
  end subroutine

  subroutine test_sets_and_lists()
    type(qelta_database) :: db
    type(qelta_id_view) :: groups
    type(qelta_id_record) :: record
    character(5) :: names(2)
    integer, allocatable :: members(:)
    call open_numbered(db, 'groups', .true.)
    call open_view(db, qelta_descriptor(onf=onf_node_group), groups)
    call groups%create_record(record)
    call record%set_list(1, ids([9, 3, 9, 12]))
    call groups%set_record('some', record)
    call record%set_list(1, ids(:0))
    call groups%set_record('none', record)
    call groups%get_record('some', record)
    call record%get_list(1, members)
    call check(size(members) == 3, 'a set has no repetitions')
    call check(all(members == ids([12, 9, 3])), 'and the order of the indices')
    call groups%get_record('none', record)
    call record%get_list(1, members)
    call check(size(members) == 0, 'an empty one')
    call db%add_name(id_type_node, n + 5, 70000, 'tip')
    call db%add_name(id_type_node, n + 6, 70001, 'root')
    names = [character(5) :: 'root', 'tip']
    call record%set_list(1, names)
    call groups%set_record('named', record)
    call groups%get_record('named', record)
    call record%get_list(1, members)
    call check(all(members == [70000, 70001]), 'nodes by name')
    call record%set_list(1, names(:0))
    call record%get_list(1, members)
    call check(size(members) == 0, 'no names')
  end subroutine

  subroutine test_custom_blocks()
    type(qelta_database) :: db
    type(qelta_block) :: block
    type(qelta_id_view) :: view
    type(qelta_id_record) :: record
    integer, allocatable :: list(:)
    real(real64), allocatable :: doubles(:)
    character(:), allocatable :: text
    real(real64) :: double, time, vector(3), tensor(6)
    integer :: number, k
    call open_numbered(db, 'custom', .true.)
    call db%fetch_block(qelta_descriptor(label='custom'), block, 'I|SLDdtVTi')
    call view%open(block)
    call view%create_record(record)
    call record%set(1, 'text')
    call record%set_list(2, [5, 3])
    call record%set_list(3, [(k/3.0_real64, k=1, 99)])
    call record%set(4, 2.5_real64)
    call record%set(5, 0.125_real64)
    call record%set(6, displacement(1))
    call record%set(7, [(real(k, real64), k=1, 6)])
    call record%set(8, -7)
    call view%set_record(6, record)
    call check(block%max_index() == 6, 'ids are indices')
    call view%create_record(record)
    call record%get_list(3, doubles)
    call check(size(doubles) == 0, 'a fresh cursor')
    call view%get_record(6, record)
    call record%get(1, text)
    call record%get_list(2, list)
    call record%get_list(3, doubles)
    call record%get(4, double)
    call record%get(5, time)
    call record%get(6, vector)
    call record%get(7, tensor)
    call record%get(8, number)
    call check(text == 'text' .and. all(list == [5, 3]) .and. number == -7, 'text, list, number')
    call check(same(doubles, [(k/3.0_real64, k=1, 99)]), 'list of doubles')
    call check(same([double, time], [2.5_real64, 0.125_real64]), 'double and time')
    call check(same(vector, displacement(1)) .and. nint(sum(tensor)) == 21, 'vector and tensor')
  end subroutine

  subroutine test_views_that_fail()
    type(qelta_database) :: db
    type(qelta_block) :: block, never
    type(qelta_id_view) :: view
    type(qelta_id_record) :: record
    character(1100) :: message
    integer :: status
    logical :: has
    real(real64) :: scalar, four(4)
    scalar = 42
    call view%get(1, scalar, status, message)
    call check_failure(status, message, 'never opened')
    call view%create_record(record, status, message)
    call check_failure(status, message, 'never opened')
    call open_numbered(db, 'failing views', .true.)
    call open_view(db, qelta_descriptor(onf=onf_temperature), view)
    call view%open(never, status, message)
    call check_failure(status, message, 'never fetched')
    call check(view%is_open(), 'a failed opening leaves the view alone')
    call view%get(5, scalar, status, message)
    call check_failure(status, message, 'does not know the id 5')
    call check(db%max_id_index(id_type_node) == n + 4, 'reading registers nothing')
    call view%set(ids(1), four, status, message)
    call check_failure(status, message, 'not 4')
    call view%create_record(record)
    call view%get_record('name', record, status, message)
    call check_failure(status, message, 'name')
    call check(same([scalar], [42.0_real64]), 'failures leave values alone')
    call db%fetch_block(qelta_descriptor(onf=onf_temperature), block)
    call check(block%max_index() == -1, 'failures make no records')
    call db%close()
    has = view%has_record(ids(1), status, message)
    call check_failure(status, message, 'database closed')
    call view%open(block, status, message)
    call check_failure(status, message, 'database is closed')
  end subroutine

  subroutine test_records_that_fail()
    type(qelta_database) :: db
    type(qelta_id_view) :: properties, topology, other
    type(qelta_id_record) :: property, element
    character(1100) :: message
    character(:), allocatable :: text
    integer, allocatable :: list(:)
    integer :: status, number
    number = 42
    call open_numbered(db, 'failing records', .true.)
    call open_view(db, qelta_descriptor(onf=onf_property), properties)
    call open_view(db, qelta_descriptor(onf=onf_element_topology), topology)
    call element%get(1, number, status, message)
    call check_failure(status, message, 'has no cursor')
    call properties%create_record(property)
    call topology%create_record(element)
    call element%get(0, number, status, message)
    call check_failure(status, message, 'fields 1 to 2, not 0')
    call element%get(1, text, status, message)
    call check_failure(status, message, 'is an integer, not a text')
    call element%set(2, 'name', status, message)
    call check_failure(status, message, 'is a list of integers')
    call element%get_list(1, list, status, message)
    call check_failure(status, message, 'is an integer, not a list of integers')
    call element%set_list(2, [1.0_real64], status, message)
    call check_failure(status, message, 'not a list of doubles')
    call element%set_list(2, ['nobody'], status, message)
    call check_failure(status, message, 'does not know the name ''nobody''')
    call element%set_list(1, ['nobody'], status, message)
    call check_failure(status, message, 'not a list of integers')
    call property%get(2, text, status, message)
    call check_failure(status, message, 'nothing at index 0')
    call property%get(1, number, status, message)
    call check_failure(status, message, 'is a text, not an integer')
    call check(number == 42 .and. .not. allocated(text) .and. .not. allocated(list), 'left alone')
    call topology%set_record(1, property, status, message)
    call check_failure(status, message, 'made by another view')
    call open_view(db, qelta_descriptor(onf=onf_element_topology), other)
    call other%get_record(1, element, status, message)
    call check_failure(status, message, 'made by another view')
    call properties%set_record('', property, status, message)
    call check_failure(status, message, 'empty name')
    call element%release()
    call element%release()
    call check(.not. element%is_open(), 'released')
    call open_view(db, qelta_descriptor(onf=onf_property), properties)
    call check(.not. property%is_open(), 'a reopened view drops its records')
  end subroutine

  subroutine open_for_a_while(db, copy, record)
    type(qelta_database), intent(in) :: db
    type(qelta_id_view), intent(inout) :: copy
    type(qelta_id_record), intent(inout) :: record
    type(qelta_id_view) :: view
    call open_view(db, qelta_descriptor(onf=onf_temperature), view)
    copy = view
    call copy%create_record(record)
    call check(record%is_open(), 'open for a while')
  end subroutine

  subroutine test_copied_views()
    type(qelta_database) :: db
    type(qelta_id_view) :: one, two, none
    type(qelta_id_record) :: record, copy
    real(real64) :: value
    call open_numbered(db, 'copied', .true.)
    call open_for_a_while(db, one, record)
    call check(.not. (one%is_open() .or. record%is_open()), 'nothing outlives the owner')
    call open_view(db, qelta_descriptor(onf=onf_temperature), one)
    two = one
    call one%create_record(record)
    copy = record
    call copy%set(1, 2.5_real64)
    call two%set_record(ids(1), record)
    call one%get(ids(1), value)
    call check(same([value], [2.5_real64]), 'copies name the same view and cursor')
    two = none
    call check(one%is_open() .and. record%is_open(), 'a copy goes and releases nothing')
  end subroutine

  subroutine test_release_in_any_order()
    type(qelta_database) :: db
    type(qelta_id_view), allocatable :: views(:)
    type(qelta_id_record), allocatable :: records(:)
    type(qelta_id_record) :: last
    integer :: k
    call open_numbered(db, 'many', .true.)
    allocate (views(20), records(60))
    do k = 1, size(records)
      if (k <= size(views)) call open_view(db, qelta_descriptor(onf=onf_temperature), views(k))
      call views(1 + mod(k - 1, size(views)))%create_record(records(k))
    end do
    call records(5)%release()
    call views(3)%release()
    call check(.not. any([(records(k)%is_open(), k=3, 60, 20)]), 'records go with their view')
    call check(count([(records(k)%is_open(), k=1, 60)]) == 56, 'others stay')
    call views(4)%create_record(last)
    call views(4)%create_record(last)
    deallocate (views)
    call check(.not. any([(records(k)%is_open(), k=1, 60)]), 'none is open')
    call check(.not. last%is_open(), 'nor the last')
  end subroutine

  subroutine test_deletion_under_views()
    type(qelta_database) :: db
    type(qelta_id_view) :: view, kept
    type(qelta_id_record) :: record, kept_record
    call open_numbered(db, 'deleted', .true.)
    call open_view(db, qelta_descriptor(onf=onf_temperature), view)
    call open_view(db, qelta_descriptor(onf=onf_displacement), kept)
    call view%create_record(record)
    call kept%create_record(kept_record)
    call db%delete_block(qelta_descriptor(onf=onf_temperature))
    call check(.not. (view%is_open() .or. record%is_open()), 'views go with their block')
    call check(kept%is_open() .and. kept_record%is_open(), 'others stay')
    call db%delete_blocks(qelta_pattern())
    call check(.not. (kept%is_open() .or. kept_record%is_open()), 'by pattern')
  end subroutine
end program
