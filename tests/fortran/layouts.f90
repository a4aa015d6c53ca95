!> The Fortran side of layouts_test.cpp: reads and writes records that C++ made.
module layouts
  use, intrinsic :: iso_c_binding
  use qelta_bindings
  use qelta_kinds
  implicit none
  private

contains

  !> Bytes of a descriptor, a pattern, a list, and where the parts of the first and last begin.
  subroutine measure(numbers) bind(c, name='fortran_measure')
    integer(c_int64_t), intent(out) :: numbers(9)
    type(qelta_descriptor_layout), target :: descriptors(2)
    type(qelta_pattern_layout), target :: pattern
    type(qelta_descriptor_list_layout), target :: list
    integer(c_int64_t) :: start
    numbers(1) = c_sizeof(descriptors(1))
    numbers(2) = c_sizeof(pattern)
    numbers(3) = c_sizeof(list)
    numbers(4) = place(c_loc(descriptors(2))) - place(c_loc(descriptors(1)))
    start = place(c_loc(descriptors(1)))
    numbers(5) = place(c_loc(descriptors(1)%mask)) - start
    numbers(6) = place(c_loc(descriptors(1)%miss_stamp)) - start
    start = place(c_loc(list))
    numbers(7) = place(c_loc(list%capacity)) - start
    numbers(8) = place(c_loc(list%data)) - start
    numbers(9) = place(c_loc(pattern%entries(13)%value)) - place(c_loc(pattern))
  end subroutine

  integer(c_int64_t) function place(address)
    type(c_ptr), intent(in) :: address
    place = transfer(address, place)
  end function

  subroutine fill_descriptor(descriptor) bind(c, name='fortran_fill_descriptor')
    type(qelta_descriptor_layout), intent(out) :: descriptor
    integer :: i
    do i = 0, 13
      if (i == qelta_label .or. i == qelta_objective_id) cycle
      descriptor%slots(i) = 100 + i
      descriptor%mask = ibset(descriptor%mask, i)
    end do
    call Descriptor_SetString_F(descriptor, qelta_label, 'from Fortran'//c_null_char)
    descriptor%table_id = 7
    descriptor%block_id = 8
    descriptor%miss_stamp = 9
  end subroutine

  subroutine fresh_descriptor(descriptor) bind(c, name='fortran_fresh_descriptor')
    type(qelta_descriptor_layout), intent(out) :: descriptor
    descriptor%miss_stamp = 0  ! everything has an initial value; this quiets the compiler
  end subroutine

  subroutine fill_pattern(pattern) bind(c, name='fortran_fill_pattern')
    type(qelta_pattern_layout), intent(out) :: pattern
    integer :: i
    do i = 0, 13
      pattern%entries(i) = qelta_pattern_entry(modulo(i, 9), 1000 + i)
    end do
    call DataDescriptorPattern_SetMatchExact_Str_F(pattern, qelta_label, 'text  ', 6)
  end subroutine

  !> Reads a list that C++ filled and grows it by `more` descriptors with iterations from 1.
  integer(c_int) function grow_list(list, more) bind(c, name='fortran_grow_list') result(total)
    type(qelta_descriptor_list_layout), intent(inout) :: list
    integer(c_int), value :: more
    type(qelta_descriptor_layout), pointer :: descriptors(:)
    integer :: i, before
    call c_f_pointer(list%data, descriptors, [list%count])
    total = sum(descriptors%slots(qelta_iteration))
    before = int(list%count)
    call DataDescriptorList_Resize_F(list, list%count + more)
    call c_f_pointer(list%data, descriptors, [list%count])
    do i = 1, more
      descriptors(before + i)%slots(qelta_iteration) = i
      descriptors(before + i)%mask = ibset(0, qelta_iteration)
    end do
  end function
end module
