program keys_test
  use checks
  use qelta
  implicit none
  call test_fields()
  call test_texts()
  call test_bad_fields()
  call test_patterns()
  call test_searches()
  call test_bad_patterns()
  call test_raised_iteration()
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

  subroutine test_patterns()
    type(qelta_pattern) :: pattern
    character(*), parameter :: rest = ' / MICROPHONE:MATCH_ALL / ID_TYPE:MATCH_ALL / '// &
                               'DIRECTION:MATCH_ALL / SUB_LEVEL:MATCH_ALL'
    pattern = qelta_pattern(onf=onf_displacement, objective_id='mass')
    call pattern%match(qelta_iteration, match_highest)
    call pattern%match(qelta_state, match_lowest)
    call pattern%match(qelta_loadcase, match_less_eq, 3)
    call pattern%match(qelta_substep, match_greater_eq, 4)
    call pattern%match(qelta_analysis, match_exact, -5)
    call pattern%match(qelta_increment, match_present)
    call pattern%match(qelta_label, match_exact, 'rho')
    call pattern%match(qelta_layer, match_missing)
    call check(pattern%text() == 'ITERATION:MATCH_HIGHEST / ONF:MATCH_EXACT(101) / '// &
               'STATE:MATCH_LOWEST / LOADCASE:MATCH_LESS_EQ(3) / SUBSTEP:MATCH_GREATER_EQ(4) / '// &
               'ANALYSIS:MATCH_EXACT(-5) / INCREMENT:MATCH_PRESENT / '// &
               'OBJECTIVE_ID:MATCH_EXACT(mass) / LABEL:MATCH_EXACT(rho) / '// &
               'LAYER:MATCH_MISSING'//rest, pattern%text())
    call pattern%match(qelta_onf, match_category, onf_category_nodal)
    call check(index(pattern%text(), ' ONF:MATCH_CATEGORY(') > 0, pattern%text())
  end subroutine

  subroutine test_searches()
    type(qelta_database) :: db
    type(qelta_descriptor) :: keys(24)
    type(qelta_descriptor), allocatable :: found(:)
    type(qelta_block) :: block
    type(qelta_pattern) :: pattern
    character(1100) :: message
    integer :: i, status
    call db%open('memory', 'keys')
    do i = 1, size(keys)
      keys(i) = qelta_descriptor(iteration=(i + 2)/3, onf=merge(101, 405, i > 12), &
                                 loadcase=1 + mod(i, 3), label='rho')
      if (mod(i, 2) == 0) call keys(i)%unset(qelta_label)
      call db%fetch_block(keys(i), block)
    end do
    do i = 1, size(keys)
      call db%find_blocks(qelta_pattern(keys(i)), found)
      call check(size(found) == 1, 'a key finds itself alone')
      call check(found(1) == keys(i), 'and it is itself')
    end do
    pattern = qelta_pattern(onf=onf_displacement)
    call pattern%match(qelta_iteration, match_highest)
    call pattern%match(qelta_loadcase, match_lowest)
    call db%find_blocks(pattern, found)
    call check(size(found) == 1, 'one key has the extremes')
    call check(found(1) == keys(24), 'the extremes: '//found(1)%text())
    call db%select_blocks('ONF=displacement; ITERATION=max; LOADCASE=min', found)
    call check(size(found) == 1, 'one key has the extremes of the text')
    call check(found(1) == keys(24), 'the same extremes: '//found(1)%text())
    call db%select_blocks(' ', found)
    call check(size(found) == size(keys), 'an empty text selects all')
    call db%select_blocks('LABL=x', found, status, message)
    call check(status /= qelta_ok .and. index(message, 'Did you mean LABEL?') > 0, trim(message))
    call check(size(found) == size(keys), 'a failure changes nothing')
    call db%find_blocks(qelta_pattern(label='nothing'), found)
    call check(size(found) == 0, 'nothing is found by another label')
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
end program
