program renumbered
  use, intrinsic :: iso_fortran_env, only: real64
  use qelta
  implicit none
  type(qelta_database) :: solver, viewer
  type(qelta_block) :: block
  type(qelta_id_view) :: groups, temperatures
  type(qelta_id_record) :: group
  integer, allocatable :: nodes(:)
  real(real64) :: temperature
  integer :: i

  ! The same four nodes, in another order in each database.
  call solver%open('memory', 'solver')
  call solver%add_ids(id_type_node, [9, 18, 27, 36])
  call viewer%open('memory', 'viewer')
  call viewer%add_ids(id_type_node, [36, 27, 18, 9])

  call solver%fetch_block(qelta_descriptor(onf=onf_temperature), block)
  call block%set_scalars([20.5_real64, 21.5_real64, 22.5_real64, 23.5_real64])
  call solver%fetch_block(qelta_descriptor(onf=onf_node_group), block)
  call groups%open(block)
  call groups%create_record(group)
  call group%set_list(1, [9, 27])
  call groups%set_record('heated', group)

  call solver%copy_blocks(viewer, qelta_pattern())

  call viewer%fetch_block(qelta_descriptor(onf=onf_node_group), block)
  call groups%open(block)
  call groups%create_record(group)
  call groups%get_record('heated', group)
  call group%get_list(1, nodes)
  call viewer%fetch_block(qelta_descriptor(onf=onf_temperature), block)
  call temperatures%open(block)
  do i = 1, size(nodes)
    call temperatures%get(nodes(i), temperature)
    print '(2(a, i0), a, f0.1)', 'node ', nodes(i), ', index ', &
      viewer%index_of_id(id_type_node, nodes(i)), ': ', temperature
  end do
  call solver%close()
  call viewer%close()
end program
