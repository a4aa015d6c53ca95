!> The same 40 nodes in two databases, with ids as a generator of meshes gives them: with gaps in the
!> first one, backwards and behind other nodes in the second.
module numbered
  use, intrinsic :: iso_fortran_env, only: real64
  use qelta
  implicit none
  private
  public :: n, ids, others, open_numbered, open_view, displacement

  integer, private :: i
  integer, parameter :: n = 40
  integer, parameter :: ids(n) = [(7*i + merge(1000, 0, i > 20), i=1, n)]
  integer, parameter :: others(5) = [2, 1, 999, -4, 0]

contains

  subroutine open_numbered(db, name, backwards)
    type(qelta_database), intent(inout) :: db
    character(*), intent(in) :: name
    logical, intent(in) :: backwards
    call db%open('memory', name, mode=qelta_create)
    if (backwards) then
      call db%add_ids(id_type_node, others)
      call db%add_ids(id_type_node, ids(n:1:-1), first_index=size(others))
    else
      call db%add_ids(id_type_node, ids)
    end if
  end subroutine

  subroutine open_view(db, key, view)
    type(qelta_database), intent(in) :: db
    type(qelta_descriptor), intent(in) :: key
    type(qelta_id_view), intent(inout) :: view
    type(qelta_block) :: block
    call db%fetch_block(key, block)
    call view%open(block)
  end subroutine

  function displacement(id) result(vector)
    integer, intent(in) :: id
    real(real64) :: vector(3)
    vector = [1, -2, 4]*id/3.0_real64
  end function
end module
