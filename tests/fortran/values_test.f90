program values_test
  use, intrinsic :: iso_fortran_env, only: int32, real32, real64
  use checks
  use qelta
  implicit none
  call test_single_values()
  call test_single_values_that_fail()
  call test_columns()
  call test_columns_of_many_fields()
  call test_columns_that_fail()
  call test_records()
  call test_lists_and_texts()
  call test_records_that_fail()
  call test_block_questions()
  call finish()

contains

  subroutine open_block(db, block, format)
    type(qelta_database), intent(inout) :: db
    type(qelta_block), intent(out) :: block
    character(*), intent(in) :: format
    call db%open('memory', 'values', mode=qelta_create)
    call db%fetch_block(qelta_descriptor(label=format), block, format)
  end subroutine

  subroutine test_single_values()
    type(qelta_database) :: db
    type(qelta_block) :: block
    integer :: number, i
    real(real64) :: scalar, vector(3), tensor(6), grid(3, 4)
    call open_block(db, block, 'I|TVdI')
    call block%set(5, 17)
    call block%set(5, 2.5_real64)
    call block%set(5, [1.0_real64, 2.0_real64, 3.0_real64])
    call block%set(5, [(real(i, real64), i=1, 6)])
    call block%get(5, number)
    call block%get(5, scalar)
    call block%get(5, vector)
    call block%get(5, tensor)
    call check(number == 17 .and. same([scalar], [2.5_real64]), 'integer and scalar')
    call check(same(vector, [1.0_real64, 2.0_real64, 3.0_real64]), 'vector')
    call check(same(tensor, [(real(i, real64), i=1, 6)]), 'tensor')
    ! A row of a matrix is not contiguous.
    grid = 0
    call block%get(5, grid(2, 2:4))
    call check(same(grid(2, 2:4), vector) .and. abs(sum(grid) - 6) < 1e-12_real64, 'strided read')
    call block%set(6, grid(2, 4:2:-1))
    call block%get(6, vector)
    call check(same(vector, [3.0_real64, 2.0_real64, 1.0_real64]), 'strided write')
  end subroutine

  subroutine test_single_values_that_fail()
    type(qelta_database) :: db
    type(qelta_block) :: block
    character(1100) :: message
    integer :: status
    real(real64) :: scalar, four(4), vector(3)
    call open_block(db, block, 'I|d')
    call block%set(0, 1.0_real64)
    scalar = 42
    four = 0
    vector = 42
    call block%get(0, vector, status, message)
    call check_failure(status, message, 'I|d')
    call block%get(0, four, status, message)
    call check_failure(status, message, 'not 4')
    call check(same([scalar, vector], spread(42.0_real64, 1, 4)), 'failures leave values alone')
    call check(block%max_index() == 0, 'failures make no records')
  end subroutine

  subroutine test_columns()
    type(qelta_database) :: db
    type(qelta_block) :: block
    integer, parameter :: n = 500
    real(real64) :: vectors(3, n), read(3, n), wide(5, 2*n), one(3)
    real(real64) :: part(3, 10)
    call open_block(db, block, 'I|V')
    call random_number(vectors)
    call block%set_vectors(vectors)
    call check(block%max_index() == n - 1, 'a column makes its records')
    call block%get_vectors(read)
    call check(same(pack(read, .true.), pack(vectors, .true.)), 'a column comes back')
    call block%get(n/2, one)
    call check(same(one, vectors(:, n/2 + 1)), 'record i is column i + 1')
    call block%get_vectors(part, first=490)
    call check(same(pack(part, .true.), pack(vectors(:, 491:), .true.)), 'from a first index')
    wide = 0
    call block%get_vectors(wide(2:4, ::2))
    call check(same(pack(wide(2:4, ::2), .true.), pack(vectors, .true.)), 'into a section')
    call check(abs(sum(wide) - sum(vectors)) < 1e-9_real64, 'and nowhere else')
    call block%set_vectors(vectors(3:1:-1, n:1:-1))
    call block%get(0, one)
    call check(same(one, vectors(3:1:-1, n)), 'from a section')
    call block%set_vectors(part, first=5000)
    call check(block%max_index() == 5009, 'a column after a gap')
    call check(.not. block%has_record(n), 'the gap stays')
    call block%set_vectors(part(:, :0))
    call block%get_vectors(part(:, :0), first=70000)
    call check(block%max_index() == 5009, 'an empty column does nothing')
  end subroutine

  subroutine test_columns_of_many_fields()
    type(qelta_database) :: db
    type(qelta_block) :: block
    type(qelta_record) :: record
    integer, parameter :: n = 7
    integer :: i, numbers(n), indices(n), number
    real(real32) :: floats(n), float
    real(real64) :: doubles(n), times(n), tensors(6, n), double, time, tensor(6)
    call open_block(db, block, 'I|fIdTit')
    call block%set_integers([(i*i, i=1, n)])
    call block%set_integers([(-i, i=1, n)], field=5)
    call block%set_scalars([(real(i, real32)/8, i=1, n)])
    call block%set_scalars([(i/3.0_real64, i=1, n)])
    call block%set_scalars([(i*100.0_real64, i=1, n)], field=6)
    call block%set_tensors(reshape([(real(i, real64), i=1, 6*n)], [6, n]))
    call block%create_record(record)
    call block%get_record(n - 1, record)
    call record%get(1, float)
    call record%get(2, number)
    call record%get(3, double)
    call record%get(4, tensor)
    call check(nint(float*8) == n .and. number == n*n, 'float and integer of a column')
    call check(same([double], [n/3.0_real64]), 'double of a column')
    call check(nint(tensor(1)) == 6*n - 5 .and. nint(tensor(6)) == 6*n, 'tensor of a column')
    call record%get(5, number)
    call record%get(6, time)
    call check(number == -n .and. nint(time) == 100*n, 'chosen fields of a column')
    call block%get_integers(numbers)
    call block%get_integers(indices, field=5)
    call block%get_scalars(floats)
    call block%get_scalars(doubles)
    call block%get_scalars(times, field=6)
    call block%get_tensors(tensors)
    call check(all(numbers == [(i*i, i=1, n)]) .and. all(indices == [(-i, i=1, n)]), 'integers')
    call check(all(nint(floats*8) == [(i, i=1, n)]), 'floats')
    call check(same(doubles, [(i/3.0_real64, i=1, n)]) .and. nint(sum(times)) == 2800, 'doubles')
    call check(nint(sum(tensors)) == 42*43/2, 'tensors')
  end subroutine

  subroutine test_columns_that_fail()
    type(qelta_database) :: db
    type(qelta_block) :: block
    character(1100) :: message
    integer :: status, numbers(3)
    real(real64) :: scalars(3), six(6, 3), three(3, 3)
    real(real32) :: floats(3)
    scalars = 42
    call open_block(db, block, 'I|VdS')
    call block%get_scalars(scalars, field=1, status=status, message=message)
    call check_failure(status, message, 'Field 1 of the block is not a double')
    call block%get_scalars(scalars, field=4, status=status, message=message)
    call check_failure(status, message, 'Field 4')
    call block%get_scalars(scalars, field=huge(1), status=status, message=message)
    call check_failure(status, message, 'Field 2147483647')
    call block%set_scalars(scalars, field=-1, status=status, message=message)
    call check_failure(status, message, 'Field -1')
    call block%get_integers(numbers, field=3, status=status, message=message)
    call check_failure(status, message, 'Field 3 of the block is not an integer')
    call block%get_integers(numbers, status=status, message=message)
    call check_failure(status, message, 'No field of the block is an integer')
    call block%get_scalars(floats, status=status, message=message)
    call check_failure(status, message, 'No field of the block is a float')
    call block%get_tensors(six, status=status, message=message)
    call check_failure(status, message, 'No field of the block is a tensor')
    call block%get_vectors(six, status=status, message=message)
    call check_failure(status, message, 'shape (3, n), not (6, n)')
    call block%set_tensors(three, status=status, message=message)
    call check_failure(status, message, 'shape (6, n), not (3, n)')
    call check(same(scalars, spread(42.0_real64, 1, 3)), 'failures leave values alone')
    call check(block%max_index() == -1, 'failures make no records')
  end subroutine

  subroutine test_records()
    type(qelta_database) :: db
    type(qelta_block) :: block
    type(qelta_record) :: record
    integer :: number, i
    logical :: flag
    real(real32) :: float
    real(real64) :: double, time, vector(3), tensor(6)
    call open_block(db, block, 'I|IdfVTitI')
    call block%create_record(record)
    call check(record%field_count() == 8 .and. record%field_type(3) == block_data_float &
               .and. record%field_type(9) == 0, 'the layout')
    call record%set(1, -7)
    call record%set(2, 1/3.0_real64)
    call record%set(3, 0.25_real32)
    call record%set(4, [1.0_real64, 2.0_real64, 3.0_real64])
    call record%set(5, [(i/7.0_real64, i=1, 6)])
    call record%set(6, huge(1))
    call record%set(7, 1e-300_real64)
    call record%set(8, .true.)
    call block%set_record(2000000, record)
    call block%create_record(record)
    call block%get_record(2000000, record)
    call record%get(1, number)
    call record%get(2, double)
    call record%get(3, float)
    call record%get(4, vector)
    call record%get(5, tensor)
    call record%get(7, time)
    call record%get(8, flag)
    call check(number == -7 .and. same([double], [1/3.0_real64]), 'integer and double')
    call check(nint(4*float) == 1 .and. same(vector, [1, 2, 3]*1.0_real64), 'float and vector')
    call check(same([tensor, time], [(i/7.0_real64, i=1, 6), 1e-300_real64]), 'tensor and time')
    call record%get(6, number)
    call check(number == huge(1) .and. flag, 'index and logical')
  end subroutine

  subroutine test_lists_and_texts()
    type(qelta_database) :: db
    type(qelta_block) :: block
    type(qelta_record) :: record
    integer, allocatable :: list(:), set(:)
    real(real64), allocatable :: doubles(:)
    character(:), allocatable :: text, long
    integer :: i
    call open_block(db, block, 'S|SLOD')
    call block%create_record(record)
    call record%get(1, text)
    call record%get_list(2, list)
    call record%get_list(4, doubles)
    call check(len(text) + size(list) + size(doubles) == 0, 'fresh ones are empty')
    long = repeat('0123456789 ', 1000)
    call record%set(1, long)
    call record%set_list(2, [5, 3, 3])
    call record%set_list(3, [9, 3, 5, 3, 4])
    call record%set_list(4, [(i/3.0_real64, i=1, 999)])
    call block%set_record(0, record)
    call record%set(1, '  ')
    call record%set_list(2, list)
    call record%set_list(3, list)
    call record%set_list(4, doubles)
    call block%set_record(1, record)
    call block%get_record(0, record)
    call record%get(1, text)
    call record%get_list(2, list)
    call record%get_list(3, set)
    call record%get_list(4, doubles)
    call check(len(text) == len(long) .and. text == long, 'a long text, its last blank too')
    call check(size(list) == 3 .and. size(set) == 4, 'length of list and set')
    call check(all(list == [5, 3, 3]) .and. all(set == [3, 4, 5, 9]), 'list and set')
    call check(same(doubles, [(i/3.0_real64, i=1, 999)]), 'list of doubles')
    call block%get_record(1, record)
    call record%get(1, text)
    call record%get_list(2, list)
    call record%get_list(3, set)
    call record%get_list(4, doubles)
    call check(len(text) == 2 .and. size(list) + size(set) + size(doubles) == 0, 'empty ones')
  end subroutine

  subroutine test_records_that_fail()
    type(qelta_database) :: db
    type(qelta_block) :: block, other
    type(qelta_record) :: record
    character(1100) :: message
    character(:), allocatable :: text
    integer, allocatable :: list(:)
    integer :: status, number
    real(real64) :: double, vector(3)
    number = 42
    call open_block(db, block, 'I|dSV')
    call record%get(1, number, status, message)
    call check_failure(status, message, 'has no cursor')
    call block%get_record(0, record, status, message)
    call check_failure(status, message, 'has no cursor')
    call block%create_record(record)
    call record%get(1, number, status, message)
    call check_failure(status, message, 'Field 1 of the record is a double, not an integer')
    call record%get(0, double, status, message)
    call check_failure(status, message, 'fields 1 to 3, not 0')
    call record%set(4, 1.0_real64, status, message)
    call check_failure(status, message, 'fields 1 to 3, not 4')
    call record%get(1, text, status, message)
    call check_failure(status, message, 'not a text')
    call record%set(2, 1.0_real32, status, message)
    call check_failure(status, message, 'is a text, not a float')
    call record%get_list(1, list, status, message)
    call check_failure(status, message, 'not a list of integers')
    call record%set_list(3, [1.0_real64], status, message)
    call check_failure(status, message, 'is a vector, not a list of doubles')
    call record%get(1, vector, status, message)
    call check_failure(status, message, 'is a double, not a vector')
    call record%set(3, [1.0_real64], status, message)
    call check_failure(status, message, 'not 1; lists have')
    call check(number == 42 .and. .not. allocated(text) .and. .not. allocated(list), 'left alone')
    call block%get_record(0, record, status, message)
    call check(status /= qelta_ok, 'an absent record')
    call db%fetch_block(qelta_descriptor(label='other'), other, 'I|dSV')
    call other%set_record(0, record, status, message)
    call check_failure(status, message, 'made by another block')
    call check(other%max_index() == -1, 'nothing was stored')
    call record%release()
    call record%release()
    call record%set(1, 1.0_real64, status, message)
    call check_failure(status, message, 'it was released')
  end subroutine

  subroutine test_block_questions()
    type(qelta_database) :: db
    type(qelta_block) :: block
    type(qelta_descriptor) :: key
    character(1100) :: message
    integer :: status
    call open_block(db, block, 'I|d')
    call check(block%max_index() == -1, 'the highest index of an empty block')
    call check(.not. block%has_record(0), 'no record in an empty block')
    call block%reserve(1000)
    call block%reserve(-1)
    call block%set(3, 1.0_real64)
    call check(block%max_index() == 3, 'the highest index')
    call check(block%has_record(3), 'a record')
    call check(.not. block%has_record(2), 'a gap')
    call check(.not. block%has_record(-1), 'no record at -1')
    call check(block%descriptor() == qelta_descriptor(label='I|d'), 'the key')
    call db%fetch_block(qelta_descriptor(onf=9999), block, status=status, message=message)
    call check_failure(status, message, '9999')
    call check(block%max_index() == 3, 'a failed fetch leaves the block alone')
    call db%create_alias(block%descriptor(), qelta_descriptor(label='alias'))
    call db%fetch_block(qelta_descriptor(label='alias'), block)
    key = block%descriptor()
    call check(key%text() == 'LABEL=I|d', 'the key behind an alias')
    call check(block%max_index() == 3, 'the block behind an alias')
    call db%create_alias(key, key, status=status, message=message)
    call check_failure(status, message, 'cannot be an alias')
  end subroutine
end program
