!> Numbers and layouts that a Fortran program shares with the library. The enumerations have the
!> names of the C++ ones.
module qelta_kinds
  use, intrinsic :: iso_c_binding, only: c_int32_t, c_int64_t, c_ptr, c_null_ptr
  implicit none
  public
  private :: c_int32_t, c_int64_t, c_ptr, c_null_ptr

  ! Status codes: success, a failure, a failure without a message id.
  integer(c_int32_t), parameter :: qelta_ok = 0, qelta_failure = -1, qelta_failure_without_id = -14

  ! How a database is opened: nothing is written; opened or made when absent; emptied.
  integer(c_int32_t), parameter :: qelta_read_only = 0, qelta_read_write = 1, qelta_create = 2

  ! The fields of a descriptor.
  integer(c_int32_t), parameter :: &
    qelta_iteration = 0, qelta_onf = 1, qelta_state = 2, qelta_loadcase = 3, qelta_substep = 4, &
    qelta_analysis = 5, qelta_increment = 6, qelta_objective_id = 7, qelta_label = 8, &
    qelta_layer = 9, qelta_microphone = 10, qelta_id_type = 11, qelta_direction = 12, &
    qelta_sub_level = 13

  ! What a pattern asks of a field.
  integer(c_int32_t), parameter :: &
    match_exact = 0, match_all = 1, match_present = 2, match_missing = 3, match_highest = 4, &
    match_lowest = 5, match_less_eq = 6, match_greater_eq = 7, match_category = 8

  ! The types of the fields of a record.
  integer(c_int32_t), parameter :: &
    block_data_integer = 1, block_data_double = 2, block_data_float = 3, block_data_string = 4, &
    block_data_vector = 5, block_data_tensor = 6, block_data_int_set = 7, &
    block_data_int_list = 8, block_data_double_list = 9, block_data_index = 10, &
    block_data_time = 11

  ! What an external id or name belongs to.
  integer(c_int32_t), parameter :: &
    id_type_node = 0, id_type_element = 1, id_type_node_group = 2, id_type_element_group = 3, &
    id_type_coordinate_system = 4, id_type_property = 5, id_type_material = 6, &
    id_type_load_case = 7, id_type_design_variable = 8, id_type_response = 9, &
    id_type_constraint = 10, id_type_surface = 11, id_type_contact_pair = 12, &
    id_type_microphone = 13, id_type_mode = 14, id_type_record_index = 15

  ! Groups of block kinds.
  integer(c_int32_t), parameter :: &
    onf_category_geometry = 1, onf_category_nodal = 2, onf_category_element = 3, &
    onf_category_global = 4, onf_category_optimisation = 5, onf_category_acoustics = 6

  ! Block kinds: geometry.
  integer(c_int32_t), parameter :: &
    onf_coordinate_system = 1, onf_node_coordinates = 2, onf_node_normal = 3, &
    onf_node_group = 4, onf_element_group = 5, onf_surface = 6, onf_material = 7, &
    onf_property = 8, onf_element_thickness = 9, onf_element_volume = 10, &
    onf_element_attributes = 11, onf_element_topology = 12, onf_contact_pair = 13

  ! Block kinds: nodal results.
  integer(c_int32_t), parameter :: &
    onf_displacement = 101, onf_velocity = 102, onf_acceleration = 103, onf_rotation = 104, &
    onf_reaction_force = 105, onf_temperature = 106, onf_nodal_stress = 107, &
    onf_nodal_strain = 108, onf_nodal_mechanical_strain = 109, onf_nodal_thermal_strain = 110, &
    onf_nodal_plastic_strain = 111, onf_nodal_equivalent_plastic_strain = 112, &
    onf_nodal_strain_energy_density = 113, onf_mode_shape = 114, onf_heat_flux = 115, &
    onf_reaction_heat = 116, onf_contact_pressure = 117, onf_contact_state = 118, &
    onf_nodal_stress_error = 119, onf_nodal_temperature_error = 120, &
    onf_electric_potential = 121, onf_current_density = 122, onf_electric_field = 123, &
    onf_magnetic_flux_density = 124, onf_external_force = 125

  ! Block kinds: element results.
  integer(c_int32_t), parameter :: &
    onf_element_stress = 201, onf_element_strain = 202, onf_element_plastic_strain = 203, &
    onf_element_equivalent_plastic_strain = 204, onf_element_strain_energy_density = 205, &
    onf_element_strain_energy = 206, onf_element_heat_flux = 207

  ! Block kinds: global results.
  integer(c_int32_t), parameter :: &
    onf_frame_time = 301, onf_frame_frequency = 302, onf_buckling_factor = 303, &
    onf_eigenvalue = 304, onf_generalised_mass = 305, onf_total_force = 306, &
    onf_total_energy = 307, onf_text_note = 308

  ! Block kinds: optimisation.
  integer(c_int32_t), parameter :: &
    onf_objective_value = 401, onf_response_value = 402, onf_constraint_value = 403, &
    onf_design_variable = 404, onf_element_density = 405, onf_element_sensitivity = 406, &
    onf_nodal_sensitivity = 407, onf_nodal_sensitivity_vector = 408, onf_design_sensitivity = 409

  ! Block kinds: acoustics.
  integer(c_int32_t), parameter :: &
    onf_sound_pressure = 501, onf_sound_power = 502, onf_nodal_sound_pressure = 503

  ! In the slot of a field that is not specified.
  integer(c_int32_t), parameter :: qelta_unspecified = -2147483647_c_int32_t - 1_c_int32_t

  !> A descriptor as it lies in memory, 80 bytes. Who changes `slots` or `mask` directly sets
  !> `table_id` and `block_id` to -1.
  type, bind(c) :: qelta_descriptor_layout
    integer(c_int32_t) :: slots(0:13) = [qelta_unspecified, qelta_unspecified, qelta_unspecified, &
      qelta_unspecified, qelta_unspecified, qelta_unspecified, 0_c_int32_t, qelta_unspecified, &
      qelta_unspecified, qelta_unspecified, qelta_unspecified, qelta_unspecified, &
      qelta_unspecified, qelta_unspecified]
    integer(c_int32_t) :: mask = 0       !< bit i: field i is specified
    integer(c_int32_t) :: table_id = -1
    integer(c_int32_t) :: block_id = -1
    integer(c_int64_t) :: miss_stamp = 0
  end type

  !> What a pattern asks of one field.
  type, bind(c) :: qelta_pattern_entry
    integer(c_int32_t) :: mode = match_all
    integer(c_int32_t) :: value = 0
  end type

  !> A pattern as it lies in memory, 112 bytes.
  type, bind(c) :: qelta_pattern_layout
    type(qelta_pattern_entry) :: entries(0:13)
  end type

  !> A list of descriptors as it lies in memory, 24 bytes; the library owns what `data` points to.
  type, bind(c) :: qelta_descriptor_list_layout
    integer(c_int64_t) :: count = 0
    integer(c_int64_t) :: capacity = 0
    type(c_ptr) :: data = c_null_ptr
  end type

  !> An array of the library as it lies in memory, 24 bytes; `data` points to 32-bit integers or
  !> doubles.
  type, bind(c) :: qelta_array_layout
    integer(c_int64_t) :: count = 0
    integer(c_int64_t) :: reserved = 0
    type(c_ptr) :: data = c_null_ptr
  end type
end module
