! Minimises the compliance of a cantilever with half the material, by the density method: stiffness
! density**3 (SIMP), a sensitivity filter, optimality criteria. Every iteration is stored and saved,
! so that a run that was interrupted resumes from its last checkpoint.
!
!     topology_optimisation NX NY MAX_ITERATIONS STORAGE NAME [--resume]
!     topology_optimisation 60 20 200 memory cantilever

!> The optimisation: from a design to its compliance and sensitivities, and on to the next design.
module density_method
  use, intrinsic :: iso_fortran_env, only: real64
  use cantilever, only: element_energies, grid, solve
  implicit none
  private
  public :: design, first_design, advance, next_density, parameters

  real(real64), parameter :: volume_fraction = 0.5_real64, penalty = 3, radius = 1.5_real64, &
    lowest_modulus = 1e-9_real64, move = 0.2_real64

  !> One iteration: the densities and what follows from them, `next` and the largest `change` on
  !> the way there too.
  type :: design
    integer :: iteration = 0
    real(real64) :: compliance = 0, volume = 0, change = 1
    real(real64), allocatable :: density(:), sensitivity(:), displacement(:, :), next(:)
  end type

contains

  !> What a resumed run must have in common with the one that it resumes.
  function parameters(mesh) result(text)
    type(grid), intent(in) :: mesh
    character(:), allocatable :: text
    character(80) :: line
    write (line, '(2(a, i0), 3(a, f0.2))') 'nx=', mesh%nx, ' ny=', mesh%ny, &
      ' volume=', volume_fraction, ' penalty=', penalty, ' radius=', radius
    text = trim(line)
  end function

  function first_design(mesh) result(first)
    type(grid), intent(in) :: mesh
    type(design) :: first
    allocate (first%next(mesh%elements()))
    first%next = volume_fraction
  end function

  !> One iteration on.
  subroutine advance(mesh, now)
    type(grid), intent(in) :: mesh
    type(design), intent(inout) :: now
    real(real64) :: energies(mesh%elements())
    now%iteration = now%iteration + 1
    now%density = now%next
    now%displacement = solve(mesh, modulus_of(now%density))
    energies = element_energies(mesh, now%displacement)
    now%compliance = dot_product(modulus_of(now%density), energies)
    now%sensitivity = -penalty*now%density**(penalty - 1)*(1 - lowest_modulus)*energies
    now%volume = sum(now%density)/size(now%density)
    now%next = next_density(mesh, now)
    now%change = maxval(abs(now%next - now%density))
  end subroutine

  elemental real(real64) function modulus_of(density)
    real(real64), intent(in) :: density
    modulus_of = lowest_modulus + density**penalty*(1 - lowest_modulus)
  end function

  !> The densities of the next iteration. The multiplier of the volume is found by bisection.
  function next_density(mesh, now) result(next)
    type(grid), intent(in) :: mesh
    type(design), intent(in) :: now
    real(real64) :: next(mesh%elements()), sensitivity(mesh%elements()), low, high, middle
    sensitivity = filtered(mesh, now)
    low = 0
    high = 1e9_real64
    do while (high - low > 1e-13_real64*high)
      middle = (low + high)/2
      next = now%density*sqrt(-sensitivity/middle)
      next = max(0.001_real64, now%density - move, min(1.0_real64, now%density + move, next))
      if (sum(next) > volume_fraction*size(next)) then
        low = middle
      else
        high = middle
      end if
    end do
  end function

  !> Sensitivities averaged over the neighbours, weighted with density and nearness.
  function filtered(mesh, now) result(smooth)
    type(grid), intent(in) :: mesh
    type(design), intent(in) :: now
    real(real64) :: smooth(mesh%elements()), weight, total
    integer :: i, j, k, l, element, neighbour, reach
    reach = ceiling(radius) - 1
    do i = 1, mesh%nx
      do j = 1, mesh%ny
        element = (i - 1)*mesh%ny + j
        smooth(element) = 0
        total = 0
        do k = max(1, i - reach), min(mesh%nx, i + reach)
          do l = max(1, j - reach), min(mesh%ny, j + reach)
            neighbour = (k - 1)*mesh%ny + l
            weight = max(0.0_real64, radius - norm2(real([i - k, j - l], real64)))
            total = total + weight
            smooth(element) = smooth(element) &
                              + weight*now%density(neighbour)*now%sensitivity(neighbour)
          end do
        end do
        smooth(element) = smooth(element)/(total*max(0.001_real64, now%density(element)))
      end do
    end do
  end function
end module

!> Where the run is kept.
module run_store
  use, intrinsic :: iso_fortran_env, only: error_unit, real64
  use cantilever, only: element_nodes, grid
  use density_method, only: design, next_density, parameters
  use qelta
  implicit none
  private
  public :: store_problem, store_iteration, restore_last, check_stored

contains

  !> The mesh with the numbers of its nodes and elements, its named node groups and the parameters,
  !> once.
  subroutine store_problem(db, mesh)
    type(qelta_database), intent(in) :: db
    type(grid), intent(in) :: mesh
    type(qelta_block) :: block
    type(qelta_record) :: record
    real(real64) :: coordinates(3, mesh%nodes())
    integer :: i
    call db%add_ids(id_type_node, [(i, i=1, mesh%nodes())])
    call db%add_ids(id_type_element, [(i, i=1, mesh%elements())])
    call db%add_name(id_type_response, 0, 1, 'COMPLIANCE')
    call db%add_name(id_type_response, 1, 2, 'VOLUME')
    coordinates = 0
    coordinates(1, :) = [((i - 1)/(mesh%ny + 1), i=1, mesh%nodes())]
    coordinates(2, :) = [(mod(i - 1, mesh%ny + 1), i=1, mesh%nodes())]
    call db%fetch_block(qelta_descriptor(onf=onf_node_coordinates), block)
    call block%set_vectors(coordinates)

    call db%fetch_block(qelta_descriptor(onf=onf_element_topology), block)
    call block%create_record(record)
    do i = 1, mesh%elements()
      call record%set(1, 9)  ! VTK's number of a quadrilateral
      call record%set_list(2, element_nodes(mesh, i) - 1)
      call block%set_record(i - 1, record)
    end do

    call store_group(db, 'FIXED', [(i, i=1, mesh%ny + 1)])
    call store_group(db, 'LOADED', [mesh%loaded_node()])

    call db%fetch_block(qelta_descriptor(onf=onf_text_note, label='PARAMETERS'), block)
    call block%create_record(record)
    call record%set(1, parameters(mesh))
    call block%set_record(0, record)
  end subroutine

  subroutine store_group(db, name, nodes)
    type(qelta_database), intent(in) :: db
    character(*), intent(in) :: name
    integer, intent(in) :: nodes(:)
    type(qelta_block) :: block
    type(qelta_id_view) :: groups
    type(qelta_id_record) :: group
    call db%fetch_block(qelta_descriptor(onf=onf_node_group), block)
    call groups%open(block)
    call groups%create_record(group)
    call group%set_list(1, nodes)
    call groups%set_record(name, group)
  end subroutine

  !> The key of one result of an iteration.
  function key_of(kind, iteration) result(key)
    integer, intent(in) :: kind, iteration
    type(qelta_descriptor) :: key
    key = qelta_descriptor(iteration=iteration, onf=kind)
    select case (kind)
    case (onf_objective_value, onf_element_sensitivity)
      call key%set(qelta_objective_id, 'COMPLIANCE')
      call key%set(qelta_loadcase, 1)
    case (onf_response_value)
      call key%set(qelta_objective_id, 'VOLUME')
    case (onf_element_density)
      call key%set(qelta_label, 'DESIGN')
    case (onf_displacement)
      call key%set(qelta_loadcase, 1)
    end select
  end function

  !> A checkpoint: with durable storage it is there in full or not at all.
  subroutine store_iteration(db, now)
    type(qelta_database), intent(in) :: db
    type(design), intent(in) :: now
    type(qelta_block) :: block
    real(real64) :: vectors(3, size(now%displacement, 2))
    call db%fetch_block(key_of(onf_objective_value, now%iteration), block)
    call block%set(0, now%compliance)
    call db%fetch_block(key_of(onf_response_value, now%iteration), block)
    call block%set(1, now%volume)
    call db%fetch_block(key_of(onf_element_density, now%iteration), block)
    call block%set_scalars(now%density)
    call db%fetch_block(key_of(onf_element_sensitivity, now%iteration), block)
    call block%set_scalars(now%sensitivity)
    vectors = 0
    vectors(:2, :) = now%displacement
    call db%fetch_block(key_of(onf_displacement, now%iteration), block)
    call block%set_vectors(vectors)
    ! A block of our own layout: one record for each iteration.
    call db%fetch_block(qelta_descriptor(label='HISTORY'), block, format='I|ddd')
    call block%set_scalars([now%compliance], first=now%iteration, field=1)
    call block%set_scalars([now%volume], first=now%iteration, field=2)
    call block%set_scalars([now%change], first=now%iteration, field=3)
    call db%save()
  end subroutine

  !> The last stored iteration; `found` is false, and `last` as it was, when there is none.
  subroutine restore_last(db, mesh, last, found)
    type(qelta_database), intent(in) :: db
    type(grid), intent(in) :: mesh
    type(design), intent(inout) :: last
    logical, intent(out) :: found
    type(qelta_pattern) :: latest
    type(qelta_descriptor), allocatable :: keys(:)
    latest = qelta_pattern(onf=onf_element_density, label='DESIGN')
    call latest%match(qelta_iteration, match_highest)
    call db%find_blocks(latest, keys)
    found = size(keys) == 1
    if (.not. found) return
    call require(note(db) == parameters(mesh), 'the stored run has other parameters: '//note(db))
    call keys(1)%get(qelta_iteration, last%iteration)
    call read_iteration(db, mesh, last)
  end subroutine

  function note(db) result(text)
    type(qelta_database), intent(in) :: db
    character(:), allocatable :: text
    type(qelta_block) :: block
    type(qelta_record) :: record
    call db%fetch_block(qelta_descriptor(onf=onf_text_note, label='PARAMETERS'), block)
    call block%create_record(record)
    call block%get_record(0, record)
    call record%get(1, text)
  end function

  subroutine read_iteration(db, mesh, stored)
    type(qelta_database), intent(in) :: db
    type(grid), intent(in) :: mesh
    type(design), intent(inout) :: stored
    type(qelta_block) :: block
    real(real64) :: vectors(3, mesh%nodes()), history(1)
    if (allocated(stored%density)) deallocate (stored%density)
    allocate (stored%density(mesh%elements()), stored%sensitivity(mesh%elements()))
    call db%fetch_block(key_of(onf_objective_value, stored%iteration), block)
    call block%get(0, stored%compliance)
    call db%fetch_block(key_of(onf_response_value, stored%iteration), block)
    call block%get(1, stored%volume)
    call db%fetch_block(key_of(onf_element_density, stored%iteration), block)
    call block%get_scalars(stored%density)
    call db%fetch_block(key_of(onf_element_sensitivity, stored%iteration), block)
    call block%get_scalars(stored%sensitivity)
    call db%fetch_block(key_of(onf_displacement, stored%iteration), block)
    call block%get_vectors(vectors)
    stored%displacement = vectors(:2, :)
    call db%fetch_block(qelta_descriptor(label='HISTORY'), block)
    call block%get_scalars(history, first=stored%iteration, field=3)
    stored%change = history(1)
    stored%next = next_density(mesh, stored)
  end subroutine

  !> Asks for the highest iteration and stops the program where it is not the last design, bit for
  !> bit, or anything else is missing.
  subroutine check_stored(db, mesh, last)
    type(qelta_database), intent(in) :: db
    type(grid), intent(in) :: mesh
    type(design), intent(in) :: last
    type(design) :: stored
    type(qelta_block) :: block
    type(qelta_descriptor), allocatable :: keys(:)
    real(real64) :: history(last%iteration)
    logical :: found
    call restore_last(db, mesh, stored, found)
    call require(found, 'no design was found')
    call require(stored%iteration == last%iteration, 'the last iteration is another one')
    call require(same([stored%compliance], [last%compliance]), 'the compliance differs')
    call require(same([stored%volume], [last%volume]), 'the volume differs')
    call require(same(stored%density, last%density), 'the densities differ')
    call require(same(stored%sensitivity, last%sensitivity), 'the sensitivities differ')
    call require(same(pack(stored%displacement, .true.), pack(last%displacement, .true.)), &
                 'the displacements differ')
    call db%find_blocks(qelta_pattern(onf=onf_objective_value), keys)
    call require(size(keys) == last%iteration, 'iterations are missing')
    call db%fetch_block(qelta_descriptor(label='HISTORY'), block)
    call block%get_scalars(history, first=1, field=1)
    call require(same(history(last%iteration:), [last%compliance]), 'the history differs')
    ! The force does the work of the compliance.
    associate (work => -stored%displacement(2, group(db, 'LOADED')))
      call require(abs(sum(work) - stored%compliance) < 1e-9_real64*stored%compliance, &
                   'the stored compliance is not that of the stored displacements')
    end associate
    associate (clamped => stored%displacement(:, group(db, 'FIXED')))
      call require(size(clamped, 2) == mesh%ny + 1 .and. maxval(abs(clamped)) <= 0, &
                   'the fixed nodes moved')
    end associate
  end subroutine

  function group(db, name) result(nodes)
    type(qelta_database), intent(in) :: db
    character(*), intent(in) :: name
    integer, allocatable :: nodes(:)
    type(qelta_block) :: block
    type(qelta_id_view) :: groups
    type(qelta_id_record) :: record
    call db%fetch_block(qelta_descriptor(onf=onf_node_group), block)
    call groups%open(block)
    call groups%create_record(record)
    call groups%get_record(name, record)
    call record%get_list(1, nodes)
  end function

  pure logical function same(a, b)
    real(real64), intent(in) :: a(:), b(:)
    same = size(a) == size(b)
    if (same) same = .not. any(a < b .or. a > b)
  end function

  subroutine require(holds, otherwise)
    logical, intent(in) :: holds
    character(*), intent(in) :: otherwise
    if (holds) return
    write (error_unit, '(2a)') 'topology_optimisation: ', otherwise
    error stop 1
  end subroutine
end module

program topology_optimisation
  use, intrinsic :: iso_fortran_env, only: error_unit, real64
  use cantilever, only: grid
  use density_method, only: advance, design, first_design
  use qelta
  use run_store
  implicit none

  type :: arguments
    type(grid) :: mesh
    integer :: max_iterations
    character(:), allocatable :: storage, name
    logical :: resume
  end type

  call optimise(read_arguments())

contains

  subroutine optimise(given)
    type(arguments), intent(in) :: given
    type(qelta_database) :: db
    type(design) :: now
    call start(given, db, now)
    print '(a)', ' iteration        compliance    volume    change'
    do while (now%change >= 0.01_real64 .and. now%iteration < given%max_iterations)
      call advance(given%mesh, now)
      call store_iteration(db, now)
      print '(i10, es18.9, f10.4, f10.4)', now%iteration, now%compliance, now%volume, now%change
    end do
    call check_stored(db, given%mesh, now)
    call draw(given%mesh, now%density)
    call db%close()
  end subroutine

  !> A new run, or the last stored iteration of an old one.
  subroutine start(given, db, now)
    type(arguments), intent(in) :: given
    type(qelta_database), intent(inout) :: db
    type(design), intent(inout) :: now
    logical :: found
    call db%open(given%storage, given%name, mode=merge(qelta_read_write, qelta_create, given%resume))
    now = first_design(given%mesh)
    found = .false.
    if (given%resume) then
      call restore_last(db, given%mesh, now, found)
      if (found) print '(a, i0)', 'resuming after iteration ', now%iteration
      if (.not. found) print '(a)', 'nothing to resume, starting anew'
    end if
    if (.not. found) call store_problem(db, given%mesh)
  end subroutine

  subroutine draw(mesh, density)
    type(grid), intent(in) :: mesh
    real(real64), intent(in) :: density(:)
    character(10), parameter :: shades = ' .:-=+*#%@'
    character(mesh%nx) :: line
    integer :: i, j, shade
    do j = mesh%ny, 1, -1
      do i = 1, mesh%nx
        shade = 1 + nint(9*density((i - 1)*mesh%ny + j))
        line(i:i) = shades(shade:shade)
      end do
      print '(3a)', '|', line, '|'
    end do
  end subroutine

  function read_arguments() result(given)
    type(arguments) :: given
    integer :: count
    count = command_argument_count()
    given%resume = argument(count) == '--resume'
    if (given%resume) count = count - 1
    if (count /= 5) call explain()
    given%mesh = grid(positive(1), positive(2))
    given%max_iterations = positive(3)
    given%storage = argument(4)
    given%name = argument(5)
  end function

  function argument(number) result(text)
    integer, intent(in) :: number
    character(:), allocatable :: text
    integer :: length
    call get_command_argument(number, length=length)
    allocate (character(length) :: text)
    if (length > 0) call get_command_argument(number, text)
  end function

  integer function positive(number)
    integer, intent(in) :: number
    character(:), allocatable :: text
    integer :: status
    text = argument(number)
    read (text, *, iostat=status) positive
    if (status /= 0) call explain()
    if (positive < 1) call explain()
  end function

  subroutine explain()
    write (error_unit, '(a)') &
      'usage: topology_optimisation NX NY MAX_ITERATIONS STORAGE NAME [--resume]', &
      '   as: topology_optimisation 60 20 200 memory cantilever'
    stop 2
  end subroutine
end program
