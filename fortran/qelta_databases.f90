!> Databases: where blocks live.
module qelta_databases
  use, intrinsic :: iso_c_binding, only: c_f_pointer, c_null_ptr, c_ptr
  use, intrinsic :: iso_fortran_env, only: int32, int64
  use qelta_bindings
  use qelta_blocks, only: make_block, qelta_block
  use qelta_failures, only: conclude, fail, for_c
  use qelta_handles
  use qelta_id_bindings
  use qelta_keys, only: qelta_descriptor, qelta_pattern
  use qelta_kinds
  implicit none
  private
  public :: qelta_database

  !> A database. The variable that opened it owns it: it is closed when that variable ends or is
  !> given another value, or by `close` of any. Variables assigned from the owner look on, and so
  !> would a function result: it is no owner. Closing does not save, and releases the records and id
  !> views of its blocks. Variables of a main program never end by themselves: close what they hold.
  type :: qelta_database
    private
    type(ticket) :: held
  contains
    procedure :: open => database_open
    procedure :: close => database_close
    procedure :: is_open => database_is_open
    !> Makes everything durable where the storage is.
    procedure :: save => database_save
    procedure :: fetch_block => database_fetch_block
    procedure :: has_block => database_has_block
    procedure :: find_blocks => database_find_blocks
    procedure :: select_blocks => database_select_blocks
    !> Deletes a block, if it is there, or those that a pattern selects.
    procedure :: delete_block => database_delete_block
    procedure :: delete_blocks => database_delete_blocks
    procedure :: create_alias => database_create_alias
    !> External ids and names: the maps between them and record indices, one for each of the
    !> `id_type_...`. What a map does not know fails.
    procedure :: add_ids => database_add_ids
    procedure :: add_name => database_add_name
    procedure :: add_names => database_add_names
    procedure :: index_of_id => database_index_of_id
    procedure :: id_of_index => database_id_of_index
    procedure :: index_of_name => database_index_of_name
    procedure :: name_of_index => database_name_of_index
    !> The highest index of a map; -1 when it is empty.
    procedure :: max_id_index => database_max_id_index
    procedure :: copy_blocks => database_copy_blocks
    generic :: assignment(=) => assign_database
    procedure, private :: assign_database
    final :: finalise_database
  end type

contains

  !> Opens a database of a kind of storage ('memory', or 'file', whose name is the path of a
  !> directory) in place of what the variable held. `mode` is qelta_read_only, qelta_read_write (the
  !> default) or qelta_create; `cache_size` is in bytes.
  subroutine database_open(self, kind, name, mode, cache_size, status, message)
    class(qelta_database), intent(inout) :: self
    character(*), intent(in) :: kind, name
    integer(int32), intent(in), optional :: mode
    integer(int64), intent(in), optional :: cache_size
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32) :: access, code
    integer(int64) :: bytes
    type(c_ptr) :: database
    access = qelta_read_write
    if (present(mode)) access = mode
    bytes = 0
    if (present(cache_size)) bytes = cache_size
    call drop(self%held)
    database = c_null_ptr
    call Database_Open_F(for_c(trim(kind)), for_c(trim(name)), access, bytes, database, code)
    if (code == qelta_ok) call hold_database(self%held, database)
    call conclude(code, status, message)
  end subroutine

  !> Does nothing when it is closed.
  subroutine database_close(self, status, message)
    class(qelta_database), intent(inout) :: self
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    integer(int32) :: code
    call release(self%held, code)
    call conclude(code, status, message)
  end subroutine

  pure logical function database_is_open(self)
    class(qelta_database), intent(in) :: self
    database_is_open = is_open(self%held)
  end function

  ! The database's address, when it is open.
  logical function resolve(self, database, status, message)
    class(qelta_database), intent(in) :: self
    type(c_ptr), intent(out) :: database
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    database = c_null_ptr
    resolve = is_open(self%held)
    if (resolve) then
      database = object_of(self%held)
    else
      call fail('The database is not open.', status, message)
    end if
  end function

  subroutine database_save(self, status, message)
    class(qelta_database), intent(in) :: self
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database
    integer(int32) :: code
    if (.not. resolve(self, database, status, message)) return
    call Database_Save_F(database, code)
    call conclude(code, status, message)
  end subroutine

  !> The block of a key, made when it is not there: of the kind that the key's `qelta_onf` numbers,
  !> or custom, with a record format such as 'I|dd', for a key without it.
  subroutine database_fetch_block(self, key, block, format, status, message)
    class(qelta_database), intent(in) :: self
    type(qelta_descriptor), intent(in) :: key
    type(qelta_block), intent(inout) :: block
    character(*), intent(in), optional :: format
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database, address
    integer(int32) :: code
    if (.not. resolve(self, database, status, message)) return
    address = c_null_ptr
    if (present(format)) then
      call Database_FetchBlock_Custom_F(database, key%layout, for_c(trim(format)), address, code)
    else
      call Database_FetchBlock_F(database, key%layout, address, code)
    end if
    if (code == qelta_ok) block = make_block(self%held, address, key)
    call conclude(code, status, message)
  end subroutine

  logical function database_has_block(self, key, status, message) result(has_block)
    class(qelta_database), intent(in) :: self
    type(qelta_descriptor), intent(in) :: key
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database
    integer(int32) :: has, code
    has_block = .false.
    if (.not. resolve(self, database, status, message)) return
    has = 0
    call Database_HasBlock_F(database, key%layout, has, code)
    has_block = has == 1
    call conclude(code, status, message)
  end function

  !> The keys that the pattern selects, in the order of the database.
  subroutine database_find_blocks(self, pattern, keys, status, message)
    class(qelta_database), intent(in) :: self
    type(qelta_pattern), intent(in) :: pattern
    type(qelta_descriptor), allocatable, intent(inout) :: keys(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(qelta_descriptor_list_layout) :: list
    type(c_ptr) :: database
    integer(int32) :: code
    if (.not. resolve(self, database, status, message)) return
    call Database_FindBlocks_F(database, pattern%layout, list, code)
    if (code == qelta_ok) call copy_list(list, keys)
    call DataDescriptorList_Deallocate_F(list)
    call conclude(code, status, message)
  end subroutine

  !> The keys that a text selects, such as 'LABEL=DISP; ITERATION=10..20; STATE=max': conditions
  !> separated by semicolons, all of which must hold. A field equals a value, lies in a range
  !> (10..20, 10.., ..20), is one of a list (1,3,7), is present (?) or missing (!); LABEL~STR* and
  !> ONF=@nodal test texts and kinds. Then come the extremes one after another, each over what is
  !> left: STATE=max, STATE=min, STATE=max/LOADCASE.
  subroutine database_select_blocks(self, text, keys, status, message)
    class(qelta_database), intent(in) :: self
    character(*), intent(in) :: text
    type(qelta_descriptor), allocatable, intent(inout) :: keys(:)
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(qelta_descriptor_list_layout) :: list
    type(c_ptr) :: database
    integer(int32) :: code
    if (.not. resolve(self, database, status, message)) return
    call Database_SelectBlocks_F(database, for_c(trim(text)), list, code)
    if (code == qelta_ok) call copy_list(list, keys)
    call DataDescriptorList_Deallocate_F(list)
    call conclude(code, status, message)
  end subroutine

  subroutine copy_list(list, keys)
    type(qelta_descriptor_list_layout), intent(in) :: list
    type(qelta_descriptor), allocatable, intent(inout) :: keys(:)
    type(qelta_descriptor_layout), pointer :: found(:)
    integer :: i
    if (allocated(keys)) deallocate (keys)
    allocate (keys(list%count))
    if (list%count == 0) return
    call c_f_pointer(list%data, found, [list%count])
    do i = 1, size(keys)
      keys(i)%layout = found(i)
    end do
  end subroutine

  subroutine database_delete_block(self, key, status, message)
    class(qelta_database), intent(in) :: self
    type(qelta_descriptor), intent(in) :: key
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database
    integer(int32) :: code
    if (.not. resolve(self, database, status, message)) return
    if (has_children(self%held)) call release_records_of(self%held, database, key)
    call count_deletion(self%held)
    call Database_DeleteBlock_F(database, key%layout, code)
    call conclude(code, status, message)
  end subroutine

  subroutine database_delete_blocks(self, pattern, status, message)
    class(qelta_database), intent(in) :: self
    type(qelta_pattern), intent(in) :: pattern
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(qelta_descriptor), allocatable :: keys(:)
    type(c_ptr) :: database
    integer(int32) :: code
    integer :: i
    character(1100) :: text
    if (.not. resolve(self, database, status, message)) return
    if (has_children(self%held)) then
      call self%find_blocks(pattern, keys, code, text)
      if (code /= qelta_ok) then
        call fail(trim(text), status, message)
        return
      end if
      do i = 1, size(keys)
        call release_records_of(self%held, database, keys(i))
      end do
    end if
    call count_deletion(self%held)
    call Database_DeleteBlocks_F(database, pattern%layout, code)
    call conclude(code, status, message)
  end subroutine

  ! Records go before the block that made them.
  subroutine release_records_of(held, database, key)
    type(ticket), intent(in) :: held
    type(c_ptr), intent(in) :: database
    type(qelta_descriptor), intent(in) :: key
    type(c_ptr) :: block
    integer(int32) :: has, code
    has = 0
    call Database_HasBlock_F(database, key%layout, has, code)
    if (has /= 1) return
    block = c_null_ptr
    call Database_FetchBlock_F(database, key%layout, block, code)
    if (code == qelta_ok) call release_children(held, block)
  end subroutine

  !> Makes `alias` a further key of the block of `existing`. When `existing` has no block, `alias`
  !> has one, they are equal or either is empty, `created` is false, and without it that fails.
  subroutine database_create_alias(self, existing, alias, created, status, message)
    class(qelta_database), intent(in) :: self
    type(qelta_descriptor), intent(in) :: existing, alias
    logical, intent(inout), optional :: created
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database
    integer(int32) :: made, code
    if (.not. resolve(self, database, status, message)) return
    made = 0
    call Database_CreateAlias_F(database, existing%layout, alias%layout, made, code)
    if (present(created) .and. code == qelta_ok) created = made == 1
    if (code == qelta_ok .and. made == 0 .and. .not. present(created)) then
      call fail(alias%text()//' cannot be an alias of '//existing%text()//'.', status, message)
    else
      call conclude(code, status, message)
    end if
  end subroutine

  !> Registers ids at the indices from `first_index` (0) on. What precedes an id that contradicts an
  !> earlier registration stays.
  subroutine database_add_ids(self, id_type, ids, first_index, status, message)
    class(qelta_database), intent(in) :: self
    integer(int32), intent(in) :: id_type
    integer(int32), intent(in), contiguous :: ids(:)
    integer(int32), intent(in), optional :: first_index
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database
    integer(int64) :: first
    integer(int32) :: code
    if (.not. resolve(self, database, status, message)) return
    first = 0
    if (present(first_index)) first = first_index
    code = qelta_ok
    if (size(ids) > 0) then
      call Database_AddIds_F(database, id_type, first, ids, size(ids, kind=int64), code)
    end if
    call conclude(code, status, message)
  end subroutine

  !> Registers one entity of an id type with names.
  subroutine database_add_name(self, id_type, index, id, name, status, message)
    class(qelta_database), intent(in) :: self
    integer(int32), intent(in) :: id_type, index, id
    character(*), intent(in) :: name
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database
    integer(int32) :: code
    if (.not. resolve(self, database, status, message)) return
    call Database_AddName_F(database, id_type, int(index, int64), id, for_c(trim(name)), code)
    call conclude(code, status, message)
  end subroutine

  !> Registers ids with their names at the indices from `first_index` (0) on; trailing blanks do not
  !> count.
  subroutine database_add_names(self, id_type, ids, names, first_index, status, message)
    class(qelta_database), intent(in) :: self
    integer(int32), intent(in) :: id_type, ids(:)
    character(*), intent(in) :: names(:)
    integer(int32), intent(in), optional :: first_index
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database
    integer(int32) :: code
    integer(int64) :: first
    if (.not. resolve(self, database, status, message)) return
    if (size(ids) /= size(names)) then
      call fail('add_names needs as many names as ids.', status, message)
      return
    end if
    first = 0
    if (present(first_index)) first = first_index
    call Database_AddNames_F(database, id_type, first, ids, names, len(names), size(ids, kind=int64), &
                             code)
    call conclude(code, status, message)
  end subroutine

  !> -1 after a failure.
  integer(int32) function database_index_of_id(self, id_type, id, status, message) result(index)
    class(qelta_database), intent(in) :: self
    integer(int32), intent(in) :: id_type, id
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database
    integer(int64) :: found
    integer(int32) :: code
    index = -1
    if (.not. resolve(self, database, status, message)) return
    found = -1
    call Database_IndexOfId_F(database, id_type, id, found, code)
    index = int(found, int32)
    call conclude(code, status, message)
  end function

  !> 0 after a failure.
  integer(int32) function database_id_of_index(self, id_type, index, status, message) result(id)
    class(qelta_database), intent(in) :: self
    integer(int32), intent(in) :: id_type, index
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database
    integer(int32) :: code
    id = 0
    if (.not. resolve(self, database, status, message)) return
    call Database_IdOfIndex_F(database, id_type, int(index, int64), id, code)
    call conclude(code, status, message)
  end function

  !> -1 after a failure.
  integer(int32) function database_index_of_name(self, id_type, name, status, message) &
      result(index)
    class(qelta_database), intent(in) :: self
    integer(int32), intent(in) :: id_type
    character(*), intent(in) :: name
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database
    integer(int64) :: found
    integer(int32) :: code
    index = -1
    if (.not. resolve(self, database, status, message)) return
    found = -1
    call Database_IndexOfName_F(database, id_type, for_c(trim(name)), found, code)
    index = int(found, int32)
    call conclude(code, status, message)
  end function

  !> Empty after a failure.
  function database_name_of_index(self, id_type, index, status, message) result(name)
    class(qelta_database), intent(in) :: self
    integer(int32), intent(in) :: id_type, index
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    character(:), allocatable :: name
    type(c_ptr) :: database
    integer(int32) :: length, code
    name = ''
    if (.not. resolve(self, database, status, message)) return
    length = 0
    call Database_NameLenOfIndex_F(database, id_type, int(index, int64), length, code)
    name = repeat(' ', length)
    if (code == qelta_ok) then
      call Database_NameOfIndex_F(database, id_type, int(index, int64), name, length, code)
    end if
    call conclude(code, status, message)
  end function

  integer(int32) function database_max_id_index(self, id_type, status, message) result(index)
    class(qelta_database), intent(in) :: self
    integer(int32), intent(in) :: id_type
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: database
    integer(int64) :: highest
    integer(int32) :: code
    index = -1
    if (.not. resolve(self, database, status, message)) return
    highest = -1
    call Database_MaxIndexOfIds_F(database, id_type, highest, code)
    index = int(highest, int32)
    call conclude(code, status, message)
  end function

  !> Copies the blocks that the pattern selects into another database, which may number differently:
  !> records travel by id, or by name where their id type has names; references likewise; custom blocks
  !> index for index. Blocks without records are copied when `copy_empty` (false) is true. `copied`
  !> is the number of blocks; after a failure what was copied stays.
  subroutine database_copy_blocks(self, target, pattern, copy_empty, copied, status, message)
    class(qelta_database), intent(in) :: self
    type(qelta_database), intent(in) :: target
    type(qelta_pattern), intent(in) :: pattern
    logical, intent(in), optional :: copy_empty
    integer(int32), intent(inout), optional :: copied
    integer(int32), intent(out), optional :: status
    character(*), intent(inout), optional :: message
    type(c_ptr) :: source, destination
    integer(int64) :: number
    integer(int32) :: empty_too, code
    if (.not. resolve(self, source, status, message)) return
    if (.not. resolve(target, destination, status, message)) return
    empty_too = 0
    if (present(copy_empty)) empty_too = merge(1, 0, copy_empty)
    call Database_CopyBlocks_F(source, destination, pattern%layout, empty_too, number, code)
    if (code == qelta_ok .and. present(copied)) copied = int(number, int32)
    call conclude(code, status, message)
  end subroutine

  impure elemental subroutine assign_database(self, other)
    class(qelta_database), intent(inout) :: self
    type(qelta_database), intent(in) :: other
    call look_on(self%held, other%held)
  end subroutine

  impure elemental subroutine finalise_database(self)
    type(qelta_database), intent(inout) :: self
    call drop(self%held)
  end subroutine
end module
