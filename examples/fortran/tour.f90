program tour
  use, intrinsic :: iso_fortran_env, only: real64
  use qelta
  implicit none
  type(qelta_database) :: db
  call db%open('memory', 'tour', mode=qelta_create)
  call whole_columns()
  call records_of_many_fields()
  call failures()
  call db%close()

contains

  subroutine whole_columns()
    type(qelta_block) :: block
    real(real64) :: stress(6, 1000), first_ten(6, 10)
    call random_number(stress)
    call db%fetch_block(qelta_descriptor(onf=onf_nodal_stress, loadcase=1), block)
    call block%set_tensors(stress)
    call block%get_tensors(first_ten)
    print '(a, i0, a, es9.2)', 'records 0 to ', block%max_index(), ', difference ', &
      maxval(abs(first_ten - stress(:, :10)))
  end subroutine

  subroutine records_of_many_fields()
    type(qelta_block) :: block
    type(qelta_record) :: record
    character(:), allocatable :: name
    integer, allocatable :: nodes(:)
    ! Records of our own: a text, an integer set, a double.
    call db%fetch_block(qelta_descriptor(label='SUPPORTS'), block, format='I|SOd')
    call block%create_record(record)
    call record%set(1, 'left side')
    call record%set_list(2, [40, 7, 8, 7])
    call record%set(3, 1.5e6_real64)
    call block%set_record(0, record)

    call block%get_record(0, record)
    call record%get(1, name)
    call record%get_list(2, nodes)
    print '(2a, *(1x, i0))', name, ':', nodes
  end subroutine

  subroutine failures()
    type(qelta_block) :: block
    character(200) :: message
    integer :: status
    real(real64) :: value
    call db%fetch_block(qelta_descriptor(onf=onf_temperature), block)
    call block%get(7, value, status, message)
    if (status /= qelta_ok) print '(a)', trim(message)
  end subroutine
end program
