!> Descriptors, the keys of blocks, and patterns, which select blocks by their keys. Both are plain
!> values.
module qelta_keys
  use, intrinsic :: iso_fortran_env, only: int32
  use qelta_bindings, only: DataDescriptorPattern_SetMatchExact_Str_F, &
    DataDescriptorPattern_ToString_F, Descriptor_GetString_F, Descriptor_GetStringLen_F, &
    Descriptor_SetString_F, Descriptor_ToString_F
  use qelta_failures, only: conclude, fail, for_c, number_text
  use qelta_kinds
  implicit none
  private
  public :: qelta_descriptor, qelta_pattern

  !> A key: fourteen fields, each specified or not; `qelta_objective_id` and `qelta_label` are
  !> texts, the others integers.
  !>
  !>     key = qelta_descriptor(iteration=3, onf=onf_displacement, label='top')
  type :: qelta_descriptor
    !> For the flat entry points; who changes it directly heeds the rule of its type.
    type(qelta_descriptor_layout) :: layout
  contains
    !> set(field, integer or text): specifies a field; blanks around a text are dropped.
    generic :: set => set_integer, set_text
    !> get(field, integer or text): fails when the field is not specified.
    generic :: get => get_integer, get_text
    procedure :: has => descriptor_has
    procedure :: unset => descriptor_unset
    !> 'ITERATION=3/ONF=101/LABEL=top', or '(empty)'.
    procedure :: text => descriptor_text
    generic :: operator(==) => equal_descriptors
    generic :: operator(/=) => unequal_descriptors
    procedure, private :: set_integer, set_text, get_integer, get_text
    procedure, private :: equal_descriptors, unequal_descriptors
  end type

  !> A test for each field. The constructor asks for the given values and leaves other fields open;
  !> `qelta_pattern(key)` asks for exactly that key.
  !>
  !>     latest = qelta_pattern(onf=onf_displacement)
  !>     call latest%match(qelta_iteration, match_highest)
  type :: qelta_pattern
    !> For the flat entry points.
    type(qelta_pattern_layout) :: layout
  contains
    !> match(field, mode[, value]): a value, integer or text, goes with `match_exact`,
    !> `match_less_eq`, `match_greater_eq`, and with `match_category` of `qelta_onf`.
    !> `match_highest` and `match_lowest` look at all keys that pass the other tests. No blanks are
    !> dropped from a text.
    generic :: match => match_integer, match_text
    !> 'ITERATION:MATCH_HIGHEST / ONF:MATCH_EXACT(101) / ...', all fourteen fields.
    procedure :: text => pattern_text
    procedure, private :: match_integer, match_text
  end type

  interface qelta_descriptor
    procedure new_descriptor
  end interface

  interface qelta_pattern
    procedure new_pattern, pattern_of_key
  end interface

  integer, parameter :: last_field = 13
  ! More than the names and numbers of a descriptor's or pattern's text form need.
  integer, parameter :: room_for_text = (last_field + 1)*48

contains

  pure function new_descriptor(iteration, onf, state, loadcase, substep, analysis, increment, &
                          objective_id, label, layer, microphone, id_type, direction, sub_level) &
      result(key)
    integer(int32), intent(in), optional :: iteration, onf, state, loadcase, substep, analysis, &
      increment, layer, microphone, id_type, direction, sub_level
    character(*), intent(in), optional :: objective_id, label
    type(qelta_descriptor) :: key
    if (present(iteration)) call specify(key%layout, qelta_iteration, iteration)
    if (present(onf)) call specify(key%layout, qelta_onf, onf)
    if (present(state)) call specify(key%layout, qelta_state, state)
    if (present(loadcase)) call specify(key%layout, qelta_loadcase, loadcase)
    if (present(substep)) call specify(key%layout, qelta_substep, substep)
    if (present(analysis)) call specify(key%layout, qelta_analysis, analysis)
    if (present(increment)) call specify(key%layout, qelta_increment, increment)
    if (present(objective_id)) call specify_text(key%layout, qelta_objective_id, objective_id)
    if (present(label)) call specify_text(key%layout, qelta_label, label)
    if (present(layer)) call specify(key%layout, qelta_layer, layer)
    if (present(microphone)) call specify(key%layout, qelta_microphone, microphone)
    if (present(id_type)) call specify(key%layout, qelta_id_type, id_type)
    if (present(direction)) call specify(key%layout, qelta_direction, direction)
    if (present(sub_level)) call specify(key%layout, qelta_sub_level, sub_level)
  end function

  pure subroutine specify(layout, field, value)
    type(qelta_descriptor_layout), intent(inout) :: layout
    integer(int32), intent(in) :: field, value
    layout%slots(field) = value
    layout%mask = ibset(layout%mask, field)
    call forget_position(layout)
  end subroutine

  pure subroutine specify_text(layout, field, text)
    type(qelta_descriptor_layout), intent(inout) :: layout
    integer(int32), intent(in) :: field
    character(*), intent(in) :: text
    call Descriptor_SetString_F(layout, field, for_c(text))
  end subroutine

  ! The position of a block that the library may have cached belongs to the former key.
  pure subroutine forget_position(layout)
    type(qelta_descriptor_layout), intent(inout) :: layout
    layout%table_id = -1
    layout%block_id = -1
  end subroutine

  ! Whether there is such a field, and, where `as_text` is given, one of that kind.
  logical function is_field(field, as_text, status, message)
    integer(int32), intent(in) :: field
    logical, intent(in), optional :: as_text
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    is_field = .false.
    if (field < 0 .or. last_field < field) then
      call fail('A descriptor has the fields 0 to 13, not '//number_text(field)//'.', &
                status, message)
      return
    end if
    if (present(as_text)) then
      if (as_text .neqv. holds_text(field)) then
        call fail('Field '//number_text(field)//' of a descriptor holds '// &
                  trim(merge('a text    ', 'an integer', holds_text(field)))//'.', status, message)
        return
      end if
    end if
    is_field = .true.
    if (present(status)) status = qelta_ok
  end function

  pure logical function holds_text(field)
    integer(int32), intent(in) :: field
    holds_text = field == qelta_objective_id .or. field == qelta_label
  end function

  logical function is_specified(self, field, status, message)
    type(qelta_descriptor), intent(in) :: self
    integer(int32), intent(in) :: field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    is_specified = self%has(field)
    if (is_specified) return
    call fail('Field '//number_text(field)//' is not specified by the descriptor '//self%text() &
              //'.', status, message)
  end function

  subroutine set_integer(self, field, value, status, message)
    class(qelta_descriptor), intent(inout) :: self
    integer(int32), intent(in) :: field, value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (is_field(field, .false., status, message)) call specify(self%layout, field, value)
  end subroutine

  subroutine set_text(self, field, value, status, message)
    class(qelta_descriptor), intent(inout) :: self
    integer(int32), intent(in) :: field
    character(*), intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (is_field(field, .true., status, message)) call specify_text(self%layout, field, value)
  end subroutine

  subroutine get_integer(self, field, value, status, message)
    class(qelta_descriptor), intent(in) :: self
    integer(int32), intent(in) :: field
    integer(int32), intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (.not. is_field(field, .false., status, message)) return
    if (is_specified(self, field, status, message)) value = self%layout%slots(field)
  end subroutine

  subroutine get_text(self, field, value, status, message)
    class(qelta_descriptor), intent(in) :: self
    integer(int32), intent(in) :: field
    character(:), allocatable, intent(inout) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32) :: length, code
    if (.not. is_field(field, .true., status, message)) return
    if (.not. is_specified(self, field, status, message)) return
    call Descriptor_GetStringLen_F(self%layout, field, length, code)
    call conclude(code, status, message)
    if (code /= qelta_ok) return
    value = repeat(' ', length)
    call Descriptor_GetString_F(self%layout, field, value, length)
  end subroutine

  pure logical function descriptor_has(self, field)
    class(qelta_descriptor), intent(in) :: self
    integer(int32), intent(in) :: field
    descriptor_has = .false.
    if (0 <= field .and. field <= last_field) descriptor_has = btest(self%layout%mask, field)
  end function

  subroutine descriptor_unset(self, field, status, message)
    class(qelta_descriptor), intent(inout) :: self
    integer(int32), intent(in) :: field
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (.not. is_field(field, status=status, message=message)) return
    self%layout%mask = ibclr(self%layout%mask, field)
    call forget_position(self%layout)
  end subroutine

  pure function descriptor_text(self) result(text)
    class(qelta_descriptor), intent(in) :: self
    character(:), allocatable :: text
    text = repeat(' ', room_for_text + length_of_texts(self%layout))
    call Descriptor_ToString_F(self%layout, text, len(text))
    text = trim(text)
  end function

  pure integer function length_of_texts(layout) result(total)
    type(qelta_descriptor_layout), intent(in) :: layout
    integer(int32) :: length, code
    integer :: i
    integer(int32), parameter :: text_fields(2) = [qelta_objective_id, qelta_label]
    total = 0
    do i = 1, size(text_fields)
      if (.not. btest(layout%mask, text_fields(i))) cycle
      call Descriptor_GetStringLen_F(layout, text_fields(i), length, code)
      if (code == qelta_ok) total = total + length
    end do
  end function

  pure logical function equal_descriptors(self, other)
    class(qelta_descriptor), intent(in) :: self
    type(qelta_descriptor), intent(in) :: other
    integer :: i
    equal_descriptors = self%layout%mask == other%layout%mask
    do i = 0, last_field
      if (.not. equal_descriptors) return
      if (btest(self%layout%mask, i)) then
        equal_descriptors = self%layout%slots(i) == other%layout%slots(i)
      end if
    end do
  end function

  pure logical function unequal_descriptors(self, other)
    class(qelta_descriptor), intent(in) :: self
    type(qelta_descriptor), intent(in) :: other
    unequal_descriptors = .not. equal_descriptors(self, other)
  end function

  pure function new_pattern(iteration, onf, state, loadcase, substep, analysis, increment, &
                       objective_id, label, layer, microphone, id_type, direction, sub_level) &
      result(pattern)
    integer(int32), intent(in), optional :: iteration, onf, state, loadcase, substep, analysis, &
      increment, layer, microphone, id_type, direction, sub_level
    character(*), intent(in), optional :: objective_id, label
    type(qelta_pattern) :: pattern
    pattern = asking_for(new_descriptor(iteration, onf, state, loadcase, substep, analysis, &
                                        increment, objective_id, label, layer, microphone, &
                                        id_type, direction, sub_level), match_all)
  end function

  pure function pattern_of_key(key) result(pattern)
    type(qelta_descriptor), intent(in) :: key
    type(qelta_pattern) :: pattern
    pattern = asking_for(key, match_missing)
  end function

  ! The fields that the key specifies exactly, the others by the given mode.
  pure function asking_for(key, mode_of_others) result(pattern)
    type(qelta_descriptor), intent(in) :: key
    integer(int32), intent(in) :: mode_of_others
    type(qelta_pattern) :: pattern
    integer :: i
    pattern%layout%entries%mode = mode_of_others
    do i = 0, last_field
      if (btest(key%layout%mask, i)) then
        pattern%layout%entries(i) = qelta_pattern_entry(match_exact, key%layout%slots(i))
      end if
    end do
  end function

  subroutine match_integer(self, field, mode, value, status, message)
    class(qelta_pattern), intent(inout) :: self
    integer(int32), intent(in) :: field, mode
    integer(int32), intent(in), optional :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (.not. is_field(field, status=status, message=message)) return
    if (needs_value(mode) .neqv. present(value)) then
      call fail('Match mode '//number_text(mode)//' comes '//trim(merge('with   ', 'without', &
                needs_value(mode)))//' a value.', status, message)
    else if (present(value)) then
      if (.not. is_field(field, .false., status, message)) return
      self%layout%entries(field) = qelta_pattern_entry(mode, value)
    else
      self%layout%entries(field)%mode = mode
    end if
  end subroutine

  pure logical function needs_value(mode)
    integer(int32), intent(in) :: mode
    needs_value = any(mode == [match_exact, match_less_eq, match_greater_eq, match_category])
  end function

  subroutine match_text(self, field, mode, value, status, message)
    class(qelta_pattern), intent(inout) :: self
    integer(int32), intent(in) :: field, mode
    character(*), intent(in) :: value
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    if (.not. is_field(field, .true., status, message)) return
    if (mode == match_exact) then
      call DataDescriptorPattern_SetMatchExact_Str_F(self%layout, field, value, len(value))
    else
      call fail('Texts are matched by match_exact only.', status, message)
    end if
  end subroutine

  pure function pattern_text(self) result(text)
    class(qelta_pattern), intent(in) :: self
    character(:), allocatable :: text
    text = repeat(' ', room_for_text + length_of_texts(exact_part(self%layout)))
    call DataDescriptorPattern_ToString_F(self%layout, text, len(text))
    text = trim(text)
  end function

  pure function exact_part(pattern) result(key)
    type(qelta_pattern_layout), intent(in) :: pattern
    type(qelta_descriptor_layout) :: key
    integer :: i
    key%slots = pattern%entries%value
    do i = 0, last_field
      if (pattern%entries(i)%mode == match_exact) key%mask = ibset(key%mask, i)
    end do
  end function
end module
