#pragma once

#include <cstdint>

/// What an external id or name belongs to.
enum FED_IdType : std::int32_t {
  ID_TYPE_NODE = 0,
  ID_TYPE_ELEMENT = 1,
  ID_TYPE_NODE_GROUP = 2,     // named
  ID_TYPE_ELEMENT_GROUP = 3,  // named
  ID_TYPE_COORDINATE_SYSTEM = 4,
  ID_TYPE_PROPERTY = 5,  // named
  ID_TYPE_MATERIAL = 6,  // named
  ID_TYPE_LOAD_CASE = 7,
  ID_TYPE_DESIGN_VARIABLE = 8,  // named
  ID_TYPE_RESPONSE = 9,         // named: objectives and responses
  ID_TYPE_CONSTRAINT = 10,      // named
  ID_TYPE_SURFACE = 11,         // named
  ID_TYPE_CONTACT_PAIR = 12,    // named
  ID_TYPE_MICROPHONE = 13,
  ID_TYPE_MODE = 14,
  ID_TYPE_RECORD_INDEX = 15  // no map: ids are the record indices
};
