program first_steps
  use, intrinsic :: iso_fortran_env, only: real64
  use qelta
  implicit none
  type(qelta_database) :: db
  type(qelta_block) :: block
  type(qelta_pattern) :: latest
  type(qelta_descriptor), allocatable :: keys(:)
  real(real64) :: displacement(3)
  integer :: iteration, i

  call db%open('memory', 'results')
  do iteration = 0, 2
    call db%fetch_block(qelta_descriptor(iteration=iteration, onf=onf_displacement), block)
    call block%set(0, [0.5_real64*iteration, 0.0_real64, 0.0_real64])
  end do
  latest = qelta_pattern(onf=onf_displacement)
  call latest%match(qelta_iteration, match_highest)
  call db%find_blocks(latest, keys)
  do i = 1, size(keys)
    call db%fetch_block(keys(i), block)
    call block%get(0, displacement)
    print '(2a, f0.1)', keys(i)%text(), ': u = ', displacement(1)
  end do
  call db%close()
end program
