!> Bilinear plane stress elements of size 1 on a grid, clamped on the left, with a force of 1
!> downwards in the middle of the right side.
module cantilever
  use, intrinsic :: iso_fortran_env, only: real64
  implicit none
  private
  public :: grid, element_nodes, solve, element_energies

  type :: grid
    integer :: nx, ny
  contains
    procedure :: elements => number_of_elements
    procedure :: nodes => number_of_nodes
    procedure :: loaded_node
  end type

  real(real64), parameter :: poisson = 0.3_real64

contains

  pure integer function number_of_elements(self)
    class(grid), intent(in) :: self
    number_of_elements = self%nx*self%ny
  end function

  pure integer function number_of_nodes(self)
    class(grid), intent(in) :: self
    number_of_nodes = (self%nx + 1)*(self%ny + 1)
  end function

  ! Nodes and elements run upwards first, then to the right, both from 1.
  pure integer function loaded_node(self)
    class(grid), intent(in) :: self
    loaded_node = self%nx*(self%ny + 1) + self%ny/2 + 1
  end function

  !> The four corners of an element, counterclockwise.
  pure function element_nodes(mesh, element) result(nodes)
    type(grid), intent(in) :: mesh
    integer, intent(in) :: element
    integer :: nodes(4), corner
    corner = element + (element - 1)/mesh%ny
    nodes = [corner, corner + mesh%ny + 1, corner + mesh%ny + 2, corner + 1]
  end function

  pure function element_dofs(mesh, element) result(dofs)
    type(grid), intent(in) :: mesh
    integer, intent(in) :: element
    integer :: dofs(8), nodes(4)
    nodes = element_nodes(mesh, element)
    dofs(1::2) = 2*nodes - 1
    dofs(2::2) = 2*nodes
  end function

  !> The stiffness of one element of modulus 1, by 2 x 2 Gauss points.
  pure function element_stiffness() result(stiffness)
    real(real64) :: stiffness(8, 8), elasticity(3, 3), strain(3, 8), x, y
    real(real64), parameter :: point = 1/sqrt(3.0_real64)
    integer :: i
    elasticity = 0
    elasticity(1, 1:2) = [1.0_real64, poisson]
    elasticity(2, 1:2) = [poisson, 1.0_real64]
    elasticity(3, 3) = (1 - poisson)/2
    elasticity = elasticity/(1 - poisson**2)
    stiffness = 0
    do i = 0, 3
      x = merge(point, -point, mod(i, 2) == 0)
      y = merge(point, -point, i < 2)
      strain = strain_matrix(x, y)
      ! The element has a quarter of the area of the square from -1 to 1.
      stiffness = stiffness + matmul(transpose(strain), matmul(elasticity, strain))/4
    end do
  end function

  !> Strains (xx, yy, 2 xy) by displacements, at a point of the square from -1 to 1.
  pure function strain_matrix(x, y) result(strain)
    real(real64), intent(in) :: x, y
    real(real64) :: strain(3, 8), dx(4), dy(4)
    dx = [-(1 - y), 1 - y, 1 + y, -(1 + y)]/2
    dy = [-(1 - x), -(1 + x), 1 + x, 1 - x]/2
    strain = 0
    strain(1, 1::2) = dx
    strain(2, 2::2) = dy
    strain(3, 1::2) = dy
    strain(3, 2::2) = dx
  end function

  !> Displacements (2, nodes) for the moduli of the elements.
  function solve(mesh, modulus) result(displacement)
    type(grid), intent(in) :: mesh
    real(real64), intent(in) :: modulus(:)
    real(real64) :: displacement(2, mesh%nodes())
    real(real64), allocatable :: band(:, :), rhs(:)
    allocate (rhs(2*mesh%nodes()))
    rhs = 0
    rhs(2*mesh%loaded_node()) = -1
    band = assemble(mesh, modulus)
    call solve_band(band, rhs)
    displacement = reshape(rhs, shape(displacement))
  end function

  !> Entry (d, j) is row j + d of column j of the stiffness; clamped rows are those of the identity.
  function assemble(mesh, modulus) result(band)
    type(grid), intent(in) :: mesh
    real(real64), intent(in) :: modulus(:)
    real(real64), allocatable :: band(:, :)
    real(real64) :: stiffness(8, 8)
    integer :: dofs(8), element, i, j, clamped
    clamped = 2*(mesh%ny + 1)
    allocate (band(0:2*mesh%ny + 5, 2*mesh%nodes()))
    band = 0
    band(0, :clamped) = 1
    stiffness = element_stiffness()
    do element = 1, mesh%elements()
      dofs = element_dofs(mesh, element)
      do j = 1, 8
        do i = 1, 8
          if (dofs(i) < dofs(j) .or. dofs(j) <= clamped) cycle
          band(dofs(i) - dofs(j), dofs(j)) = band(dofs(i) - dofs(j), dofs(j)) &
                                             + modulus(element)*stiffness(i, j)
        end do
      end do
    end do
  end function

  !> Cholesky factors in place of the matrix, the solution in place of the right-hand side.
  subroutine solve_band(band, rhs)
    real(real64), intent(inout) :: band(0:, :), rhs(:)
    integer :: j, k, width
    do j = 1, size(rhs)
      width = min(ubound(band, 1), size(rhs) - j)
      band(0, j) = sqrt(band(0, j))
      band(1:width, j) = band(1:width, j)/band(0, j)
      do k = 1, width
        band(0:width - k, j + k) = band(0:width - k, j + k) - band(k, j)*band(k:width, j)
      end do
    end do
    do j = 1, size(rhs)
      width = min(ubound(band, 1), size(rhs) - j)
      rhs(j) = rhs(j)/band(0, j)
      rhs(j + 1:j + width) = rhs(j + 1:j + width) - rhs(j)*band(1:width, j)
    end do
    do j = size(rhs), 1, -1
      width = min(ubound(band, 1), size(rhs) - j)
      rhs(j) = (rhs(j) - dot_product(band(1:width, j), rhs(j + 1:j + width)))/band(0, j)
    end do
  end subroutine

  !> u.K u of each element, for a modulus of 1.
  function element_energies(mesh, displacement) result(energies)
    type(grid), intent(in) :: mesh
    real(real64), intent(in) :: displacement(:, :)
    real(real64) :: energies(mesh%elements()), stiffness(8, 8), u(8)
    integer :: element
    stiffness = element_stiffness()
    do element = 1, mesh%elements()
      u = reshape(displacement(:, element_nodes(mesh, element)), [8])
      energies(element) = dot_product(u, matmul(stiffness, u))
    end do
  end function
end module
