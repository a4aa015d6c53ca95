#include "FED_OnfMetaData.h"
#include "QeltaInitOrder.h"

QELTA_INIT_EARLY const FED_IdTypeInfoData FED_ID_TYPE_INFO[16] = {
    {ID_TYPE_NODE, 0, "node"},
    {ID_TYPE_ELEMENT, 0, "element"},
    {ID_TYPE_NODE_GROUP, 1, "node group"},
    {ID_TYPE_ELEMENT_GROUP, 1, "element group"},
    {ID_TYPE_COORDINATE_SYSTEM, 0, "coordinate system"},
    {ID_TYPE_PROPERTY, 1, "property"},
    {ID_TYPE_MATERIAL, 1, "material"},
    {ID_TYPE_LOAD_CASE, 0, "load case"},
    {ID_TYPE_DESIGN_VARIABLE, 1, "design variable"},
    {ID_TYPE_RESPONSE, 1, "response"},
    {ID_TYPE_CONSTRAINT, 1, "constraint"},
    {ID_TYPE_SURFACE, 1, "surface"},
    {ID_TYPE_CONTACT_PAIR, 1, "contact pair"},
    {ID_TYPE_MICROPHONE, 0, "microphone"},
    {ID_TYPE_MODE, 0, "mode"},
    {ID_TYPE_RECORD_INDEX, 0, "record index"}};
