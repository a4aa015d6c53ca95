!> How the comfortable layer tells failures: by `status` and `message` where the caller gives them;
!> without `status` the text goes to the error unit and the program stops. `message` is of fixed
!> length, as in `iomsg`: gfortran loses the new length of one that is allocatable and optional on
!> the way through several procedures.
module qelta_failures
  use, intrinsic :: iso_c_binding, only: c_null_char
  use, intrinsic :: iso_fortran_env, only: error_unit, int32
  use qelta_bindings, only: LastError_Text_F
  use qelta_kinds, only: qelta_failure, qelta_ok
  implicit none
  private
  public :: conclude, fail, for_c, number_text

contains

  !> Passes on what an entry point returned.
  subroutine conclude(code, status, message)
    integer(int32), intent(in) :: code
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (code == qelta_ok) then
      if (present(status)) status = qelta_ok
    else
      call tell(code, last_error(), status, message)
    end if
  end subroutine

  !> A failure that this layer found itself.
  subroutine fail(text, status, message)
    character(*), intent(in) :: text
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    call tell(qelta_failure, text, status, message)
  end subroutine

  subroutine tell(code, text, status, message)
    integer(int32), intent(in) :: code
    character(*), intent(in) :: text
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (present(message)) message = text
    if (present(status)) then
      status = code
    else
      write (error_unit, '(a)') text
      error stop 1
    end if
  end subroutine

  function last_error() result(text)
    character(:), allocatable :: text
    character(1023) :: buffer
    character(12) :: id
    call LastError_Text_F(buffer, len(buffer), id, len(id))
    text = trim(buffer)
    if (id /= '') text = text//' ('//id//')'
  end function

  pure function for_c(text) result(terminated)
    character(*), intent(in) :: text
    character(len(text) + 1) :: terminated
    terminated = text//c_null_char
  end function

  pure function number_text(number) result(text)
    integer(int32), intent(in) :: number
    character(:), allocatable :: text
    character(11) :: digits
    write (digits, '(i0)') number
    text = trim(digits)
  end function
end module
