!> Counts what does not hold; the program ends with exit code 1 when anything did not.
module checks
  use, intrinsic :: iso_fortran_env, only: error_unit, real64
  use qelta, only: qelta_ok
  implicit none
  private
  public :: check, check_failure, same, finish

  integer, save :: done = 0, failed = 0

contains

  subroutine check(holds, what)
    logical, intent(in) :: holds
    character(*), intent(in) :: what
    done = done + 1
    if (holds) return
    failed = failed + 1
    write (error_unit, '(2a)') 'does not hold: ', what
  end subroutine

  !> A call failed, and its message holds `part`.
  subroutine check_failure(status, message, part)
    integer, intent(in) :: status
    character(*), intent(in) :: message
    character(*), intent(in) :: part
    call check(status /= qelta_ok .and. index(message, part) > 0, &
               'fails with "'//part//'", was: "'//trim(message)//'"')
  end subroutine

  pure logical function same(a, b)
    real(real64), intent(in) :: a(:), b(:)
    same = size(a) == size(b)
    if (same) same = all(.not. (a < b .or. a > b))
  end function

  subroutine finish()
    print '(i0, a, i0, a)', done, ' checks, ', failed, ' failed'
    if (failed > 0) error stop 1
  end subroutine
end module
