program keys_test
  use, intrinsic :: iso_c_binding, only: c_int32_t, c_null_char, c_null_ptr, c_ptr
  use checks
  use qelta
  use qelta_bindings
  implicit none
  call test_fields()
  call test_texts()
  call test_bad_fields()
  call test_patterns_against_a_naive_model()
  call test_pattern_of_a_key()
  call test_bad_patterns()
  call test_raised_iteration()
  call test_raised_iteration_in_the_bare_record()
  call finish()

contains

  subroutine test_fields()
    type(qelta_descriptor) :: key
    integer :: value
    call check(key%text() == '(empty)', 'a fresh key is empty')
    key = qelta_descriptor(iteration=3, onf=onf_displacement, label='  top ')
    call check(key%text() == 'ITERATION=3/ONF=101/LABEL=top', 'text of a key: '//key%text())
    call key%set(qelta_sub_level, 7)
    call key%set(qelta_iteration, -1)
    call key%unset(qelta_label)
    call check(key%text() == 'ITERATION=-1/ONF=101/SUB_LEVEL=7', 'changed key: '//key%text())
    call key%get(qelta_sub_level, value)
    call check(value == 7, 'value of a field')
    call check(key%has(qelta_onf) .and. .not. key%has(qelta_label) .and. .not. key%has(99), 'has')
    call check(key /= qelta_descriptor(iteration=-1, onf=onf_displacement), 'fewer fields differ')
    call check(key == qelta_descriptor(onf=101, iteration=-1, sub_level=7), 'same fields, same key')
    key = qelta_descriptor(1, 2, 3, 4, 5, 6, 7, 'objective', 'label', 1, 10, 11, 2, 3)
    call check(key%text() == 'ITERATION=1/ONF=2/STATE=3/LOADCASE=4/SUBSTEP=5/ANALYSIS=6/'// &
               'INCREMENT=7/OBJECTIVE_ID=objective/LABEL=label/LAYER=1/MICROPHONE=10/'// &
               'ID_TYPE=11/DIRECTION=2/SUB_LEVEL=3', 'the constructor takes the fields in order')
  end subroutine

  subroutine test_texts()
    type(qelta_descriptor) :: key
    character(:), allocatable :: read, written
    written = 'a'//repeat(' ', 3000)//char(195)//char(188)
    call key%set(qelta_label, written)
    call key%get(qelta_label, read)
    call check(len(read) == len(written) .and. read == written, 'a long text with blanks inside')
    call check(key%text() == 'LABEL='//written, 'a long text form')
    call key%set(qelta_objective_id, '   ')
    call key%get(qelta_objective_id, read)
    call check(len(read) == 0, 'blanks alone are the empty text')
  end subroutine

  subroutine test_bad_fields()
    type(qelta_descriptor) :: key
    character(1100) :: message
    character(:), allocatable :: text
    integer :: status, value, i
    integer, parameter :: bad(4) = [-1, 14, -huge(1) - 1, huge(1)]
    value = 42
    allocate (text, source='kept')
    do i = 1, size(bad)
      call key%set(bad(i), 1, status, message)
      call check_failure(status, message, 'fields 0 to 13')
      call key%get(bad(i), text, status, message)
      call check_failure(status, message, 'fields 0 to 13')
      call key%unset(bad(i), status, message)
      call check_failure(status, message, 'fields 0 to 13')
    end do
    call key%set(qelta_label, 1, status, message)
    call check_failure(status, message, 'holds a text')
    call key%set(qelta_loadcase, 'one', status, message)
    call check_failure(status, message, 'holds an integer')
    call key%get(qelta_loadcase, value, status, message)
    call check_failure(status, message, 'not specified')
    call key%get(qelta_label, text, status, message)
    call check_failure(status, message, 'not specified')
    call check(value == 42 .and. text == 'kept', 'a failure leaves values alone')
    call check(key%text() == '(empty)', 'a failure leaves the key alone')
    call key%set(qelta_loadcase, 1, status, message)
    call check(status == qelta_ok, 'success says so')
  end subroutine

  ! Keys of several shapes in a database of their own.
  subroutine fill(db, keys)
    type(qelta_database), intent(inout) :: db
    type(qelta_descriptor), allocatable, intent(out) :: keys(:)
    type(qelta_block) :: block
    integer :: iteration, loadcase, i
    call db%open('memory', 'keys')
    allocate (keys(24))
    i = 0
    do iteration = 1, 4
      do loadcase = 1, 3
        keys(i + 1) = qelta_descriptor(iteration=iteration, onf=onf_displacement, loadcase=loadcase)
        keys(i + 2) = qelta_descriptor(iteration=iteration, onf=onf_element_density, label='rho')
        if (loadcase > 1) call keys(i + 2)%set(qelta_layer, loadcase)
        i = i + 2
      end do
    end do
    do i = 1, size(keys)
      call db%fetch_block(keys(i), block)
    end do
  end subroutine

  ! Whether `field` of `key` is what `mode` and `value` ask for, extremes apart.
  logical function fits(key, field, mode, value)
    type(qelta_descriptor), intent(in) :: key
    integer, intent(in) :: field, mode, value
    integer :: found
    fits = key%has(field) .neqv. mode == match_missing
    if (.not. fits .or. mode == match_missing .or. mode == match_present) return
    call key%get(field, found)
    if (mode == match_exact) fits = found == value
    if (mode == match_less_eq) fits = found <= value
    if (mode == match_greater_eq) fits = found >= value
    if (mode == match_category) fits = found/100 == value - 1
  end function

  subroutine test_patterns_against_a_naive_model()
    type(qelta_database) :: db
    type(qelta_descriptor), allocatable :: keys(:), found(:)
    type(qelta_pattern) :: pattern
    integer, parameter :: modes(6) = [match_exact, match_present, match_missing, match_less_eq, &
                                      match_greater_eq, match_category]
    integer, parameter :: fields(4) = [qelta_iteration, qelta_loadcase, qelta_layer, qelta_onf]
    character(1100) :: message
    integer :: m, f, i, value, expected, status
    call fill(db, keys)
    do m = 1, size(modes)
      do f = 1, size(fields)
        if (modes(m) == match_category .and. fields(f) /= qelta_onf) cycle
        value = merge(onf_category_nodal, 2, modes(m) == match_category)
        pattern = qelta_pattern()
        if (modes(m) == match_present .or. modes(m) == match_missing) then
          call pattern%match(fields(f), modes(m))
        else
          call pattern%match(fields(f), modes(m), value)
        end if
        call db%find_blocks(pattern, found)
        expected = 0
        do i = 1, size(keys)
          if (fits(keys(i), fields(f), modes(m), value)) expected = expected + 1
        end do
        call check(size(found) == expected, 'number of keys found by '//pattern%text())
        do i = 1, size(found)
          call check(fits(found(i), fields(f), modes(m), value), 'found by '//pattern%text())
        end do
      end do
    end do
    pattern = qelta_pattern(onf=onf_displacement)
    call pattern%match(qelta_iteration, match_highest)
    call pattern%match(qelta_loadcase, match_lowest)
    call db%find_blocks(pattern, found)
    call check(size(found) == 1, 'one key has the extremes')
    call check(found(1) == qelta_descriptor(iteration=4, onf=onf_displacement, loadcase=1), &
               'the extremes: '//found(1)%text())
    call db%select_blocks('ONF=displacement; ITERATION=max; LOADCASE=min', found)
    call check(size(found) == 1, 'one key has the extremes of the text')
    call check(found(1) == qelta_descriptor(iteration=4, onf=onf_displacement, loadcase=1), &
               'the same extremes: '//found(1)%text())
    call db%select_blocks(' ', found)
    call check(size(found) == size(keys), 'an empty text selects all')
    call db%select_blocks('LABL=x', found, status, message)
    call check(status /= qelta_ok .and. index(message, 'Did you mean LABEL?') > 0, trim(message))
    call check(size(found) == size(keys), 'a failure changes nothing')
    call db%find_blocks(qelta_pattern(label='nothing'), found)
    call check(size(found) == 0, 'nothing is found by another label')
  end subroutine

  subroutine test_pattern_of_a_key()
    type(qelta_database) :: db
    type(qelta_descriptor), allocatable :: keys(:), found(:)
    type(qelta_pattern) :: pattern
    integer :: i
    call fill(db, keys)
    do i = 1, size(keys)
      call db%find_blocks(qelta_pattern(keys(i)), found)
      call check(size(found) == 1, 'a key finds itself alone')
      call check(found(1) == keys(i), 'and it is itself')
    end do
    call pattern%match(qelta_label, match_exact, 'rho')
    call pattern%match(qelta_layer, match_missing)
    call db%find_blocks(pattern, found)
    call check(size(found) == 4, 'by text')
    call check(index(pattern%text(), 'LABEL:MATCH_EXACT(rho) / LAYER:MATCH_MISSING / ') > 0, &
               pattern%text())
  end subroutine

  subroutine test_bad_patterns()
    type(qelta_pattern) :: pattern
    character(1100) :: message
    character(:), allocatable :: before
    integer :: status
    before = pattern%text()
    call pattern%match(14, match_present, status=status, message=message)
    call check_failure(status, message, 'fields 0 to 13')
    call pattern%match(qelta_iteration, match_exact, status=status, message=message)
    call check_failure(status, message, 'comes with a value')
    call pattern%match(qelta_iteration, match_highest, 3, status, message)
    call check_failure(status, message, 'comes without a value')
    call pattern%match(qelta_label, match_less_eq, 3, status, message)
    call check_failure(status, message, 'holds a text')
    call pattern%match(qelta_label, match_less_eq, 'z', status, message)
    call check_failure(status, message, 'match_exact only')
    call pattern%match(qelta_state, match_exact, 'z', status, message)
    call check_failure(status, message, 'holds an integer')
    call check(pattern%text() == before, 'a failure leaves the pattern alone')
  end subroutine

  subroutine test_raised_iteration()
    type(qelta_database) :: db
    type(qelta_descriptor) :: key
    type(qelta_block) :: block
    integer :: i, value
    call db%open('memory', 'raised')
    key = qelta_descriptor(iteration=0, label='counter')
    do i = 0, 9
      call key%set(qelta_iteration, i)
      call db%fetch_block(key, block, format='I|I')
      call block%set(0, i)
    end do
    do i = 0, 9
      key%layout%slots(qelta_iteration) = i
      call db%fetch_block(key, block, format='I|I')
      call block%get(0, value)
      call check(value == i, 'each iteration has its block')
    end do
  end subroutine

  ! What a program does that uses the entry points alone: the record is changed in place, and no
  ! lookup may remember the former key.
  subroutine test_raised_iteration_in_the_bare_record()
    type(qelta_descriptor_layout) :: key
    type(c_ptr) :: db, block
    integer(c_int32_t) :: i, value, has, status
    db = c_null_ptr
    call Database_Open_F('memory'//c_null_char, 'bare'//c_null_char, qelta_create, 0_8, db, status)
    key%mask = ibset(ibset(0, qelta_iteration), qelta_onf)
    key%slots(qelta_onf) = onf_element_density
    do i = 1, 9
      key%slots(qelta_iteration) = i
      call Database_HasBlock_F(db, key, has, status)
      call check(has == 0, 'a raised key has no block yet')
      call Database_FetchBlock_F(db, key, block, status)
      call DataBlock_SetScalar_F(block, 0, real(i, 8), status)
      call DataBlock_GetMaxIndex_F(block, value, status)
      call check(value == 0 .and. status == 0, 'a fresh block')
    end do
    do i = 9, 1, -1
      key%slots(qelta_iteration) = i
      call Database_FetchBlock_F(db, key, block, status)
      call check(scalar_of(block) == i, 'each iteration has its block')
    end do
    call check(key%table_id == -1 .and. key%block_id == -1, 'no position was written')
    call Database_Close_F(db, status)
  end subroutine

  integer function scalar_of(block)
    use, intrinsic :: iso_fortran_env, only: real64
    type(c_ptr), intent(in) :: block
    real(real64) :: value
    integer(c_int32_t) :: status
    call DataBlock_GetScalar_F(block, 0, value, status)
    scalar_of = nint(value)
  end function
end program
