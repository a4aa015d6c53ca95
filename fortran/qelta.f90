!> A store for the results of solvers and optimisers, for Fortran: `use qelta` gives everything.
!>
!>     type(qelta_database) :: db
!>     type(qelta_block) :: block
!>     call db%open('memory', 'results')
!>     call db%fetch_block(qelta_descriptor(iteration=1, onf=onf_displacement), block)
!>     call block%set_vectors(displacements)   ! real(real64), shape (3, nodes)
!>
!> What the types do is said where they are defined: qelta_databases.f90, qelta_blocks.f90,
!> qelta_records.f90, qelta_keys.f90 for descriptors and patterns, and qelta_id_views.f90 and
!> qelta_id_records.f90 for access by external ids and names.
!>
!> Record indices start at 0, the fields of a record at 1. Descriptor fields have names:
!> `qelta_iteration` and so on.
!>
!> Everything that can fail has the optional last arguments `status` (0 on success) and `message`, a
!> character variable that a failure sets (up to 1100 characters). Without `status` a failure writes
!> its text to the error unit and stops the program with exit code 1. After a failure the other
!> arguments are as they were, columns apart. The library logs failures in either case.
!>
!> The variable that a database, view or record was opened with owns it, copies look on; pass them
!> as intent(in) or intent(inout), not as function results. Everything here serves one thread at a
!> time. Texts are UTF-8.
module qelta
  use qelta_blocks, only: qelta_block
  use qelta_databases, only: qelta_database
  use qelta_id_records, only: qelta_id_record
  use qelta_id_views, only: qelta_id_view
  use qelta_keys, only: qelta_descriptor, qelta_pattern
  use qelta_kinds
  use qelta_records, only: qelta_record
  implicit none
  public
end module
