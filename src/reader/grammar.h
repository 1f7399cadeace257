// The typed grammar of VRML 1.0 as a table: which fields a node type admits, and in which form.
//
//   file   item*
//   item   [DEF name] node | USE name
//   node   type { [fields list] field* item* }  |  unknown-type unknown-body
//   field  field-name value
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "reader/names.h"

namespace varimesh {

// The form of a field's value. A plural is one value without brackets, or any number of them in
// brackets, with commas between them and perhaps behind the last one.
enum class Form : std::uint8_t {
  Float,
  Floats,
  Integer,
  Integers,
  Boolean,
  Enumeration,
  BitMask,
  String,
  Strings,
  Vector2,
  Vectors2,
  Vector3,  // a colour, too
  Vectors3,
  Rotation,
  Matrix,
  Image,
};
inline constexpr std::size_t formCount = static_cast<std::size_t>(Form::Image) + 1;

struct FieldRule {
  FieldId field = FIELD_NONE;
  Form form = Form::Float;
  EnumKind kind = KIND_style;  // of enumerations and bit masks
};

inline constexpr std::size_t maxFieldRules = 7;

struct NodeRule {
  NodeType type;
  bool declaration;  // whether a fields declaration may stand before the fields
  bool children;     // whether items may follow the fields
  std::array<FieldRule, maxFieldRules> fields{};

  // The rule of a field, or null when the node type does not admit it.
  [[nodiscard]] constexpr const FieldRule* find(int field) const {
    for (const FieldRule& rule : fields) {
      if (rule.field == field) return &rule;
    }
    return nullptr;
  }
};

constexpr NodeRule leaf(NodeType type, std::array<FieldRule, maxFieldRules> fields) {
  return {type, true, false, fields};
}
constexpr NodeRule group(NodeType type, std::array<FieldRule, maxFieldRules> fields) {
  return {type, true, true, fields};
}
constexpr NodeRule indexedShape(NodeType type) {
  return leaf(type, {{{FIELD_coordIndex, Form::Integers},
                      {FIELD_materialIndex, Form::Integers},
                      {FIELD_normalIndex, Form::Integers},
                      {FIELD_textureCoordIndex, Form::Integers}}});
}

// By node type. The classes of the nodes stand in nodefactory.cpp.
inline constexpr std::array<NodeRule, NODE_NONE> nodeRules = {{
    leaf(NODE_AsciiText, {{{FIELD_string, Form::Strings},
                           {FIELD_spacing, Form::Float},
                           {FIELD_justification, Form::Enumeration, KIND_justification},
                           {FIELD_width, Form::Floats}}}),
    leaf(NODE_Cone, {{{FIELD_parts, Form::BitMask, KIND_parts},
                      {FIELD_bottomRadius, Form::Float},
                      {FIELD_height, Form::Float}}}),
    leaf(NODE_Coordinate3, {{{FIELD_point, Form::Vectors3}}}),
    leaf(NODE_Cube,
         {{{FIELD_width, Form::Float}, {FIELD_height, Form::Float}, {FIELD_depth, Form::Float}}}),
    leaf(NODE_Cylinder, {{{FIELD_parts, Form::BitMask, KIND_parts},
                          {FIELD_radius, Form::Float},
                          {FIELD_height, Form::Float}}}),
    leaf(NODE_DirectionalLight, {{{FIELD_on, Form::Boolean},
                                  {FIELD_intensity, Form::Float},
                                  {FIELD_color, Form::Vector3},
                                  {FIELD_direction, Form::Vector3}}}),
    leaf(NODE_FontStyle, {{{FIELD_size, Form::Float},
                           {FIELD_family, Form::Enumeration, KIND_family},
                           {FIELD_style, Form::BitMask, KIND_style}}}),
    NodeRule{NODE_Group, false, true},
    indexedShape(NODE_IndexedFaceSet),
    indexedShape(NODE_IndexedLineSet),
    leaf(NODE_Info, {{{FIELD_string, Form::String}}}),
    group(NODE_LOD, {{{FIELD_range, Form::Floats}, {FIELD_center, Form::Vectors3}}}),
    leaf(NODE_Material, {{{FIELD_ambientColor, Form::Vectors3},
                          {FIELD_diffuseColor, Form::Vectors3},
                          {FIELD_specularColor, Form::Vectors3},
                          {FIELD_emissiveColor, Form::Vectors3},
                          {FIELD_shininess, Form::Floats},
                          {FIELD_transparency, Form::Floats}}}),
    leaf(NODE_MaterialBinding, {{{FIELD_value, Form::Enumeration, KIND_binding}}}),
    group(NODE_LevelOfDetail, {{{FIELD_screenArea, Form::Floats}, {FIELD_center, Form::Vectors3}}}),
    leaf(NODE_MatrixTransform, {{{FIELD_matrix, Form::Matrix}}}),
    leaf(NODE_Normal, {{{FIELD_vector, Form::Vectors3}}}),
    leaf(NODE_NormalBinding, {{{FIELD_value, Form::Enumeration, KIND_binding}}}),
    leaf(NODE_OrthographicCamera, {{{FIELD_position, Form::Vector3},
                                    {FIELD_orientation, Form::Rotation},
                                    {FIELD_focalDistance, Form::Float},
                                    {FIELD_height, Form::Float}}}),
    leaf(NODE_PerspectiveCamera, {{{FIELD_position, Form::Vector3},
                                   {FIELD_orientation, Form::Rotation},
                                   {FIELD_focalDistance, Form::Float},
                                   {FIELD_heightAngle, Form::Float}}}),
    leaf(NODE_PointLight, {{{FIELD_on, Form::Boolean},
                            {FIELD_intensity, Form::Float},
                            {FIELD_color, Form::Vector3},
                            {FIELD_location, Form::Vector3}}}),
    leaf(NODE_PointSet, {{{FIELD_startIndex, Form::Integer}, {FIELD_numPoints, Form::Integer}}}),
    leaf(NODE_Rotation, {{{FIELD_rotation, Form::Rotation}}}),
    leaf(NODE_Scale, {{{FIELD_scaleFactor, Form::Vector3}}}),
    group(NODE_Separator, {{{FIELD_renderCulling, Form::Enumeration, KIND_renderCulling}}}),
    leaf(NODE_ShapeHints, {{{FIELD_vertexOrdering, Form::Enumeration, KIND_vertexOrdering},
                            {FIELD_shapeType, Form::Enumeration, KIND_shapeType},
                            {FIELD_faceType, Form::Enumeration, KIND_faceType},
                            {FIELD_creaseAngle, Form::Float}}}),
    leaf(NODE_Sphere, {{{FIELD_radius, Form::Float}}}),
    leaf(NODE_SpotLight, {{{FIELD_on, Form::Boolean},
                           {FIELD_intensity, Form::Float},
                           {FIELD_color, Form::Vector3},
                           {FIELD_location, Form::Vector3},
                           {FIELD_direction, Form::Vector3},
                           {FIELD_dropOffRate, Form::Float},
                           {FIELD_cutOffAngle, Form::Float}}}),
    group(NODE_Switch, {{{FIELD_whichChild, Form::Integer}}}),
    leaf(NODE_Texture2, {{{FIELD_filename, Form::String},
                          {FIELD_image, Form::Image},
                          {FIELD_wrapS, Form::Enumeration, KIND_wrapS},
                          {FIELD_wrapT, Form::Enumeration, KIND_wrapT}}}),
    leaf(NODE_Texture2Transform, {{{FIELD_translation, Form::Vector2},
                                   {FIELD_rotation, Form::Float},
                                   {FIELD_scaleFactor, Form::Vector2},
                                   {FIELD_center, Form::Vector2}}}),
    leaf(NODE_TextureCoordinate2, {{{FIELD_point, Form::Vectors2}}}),
    leaf(NODE_Transform, {{{FIELD_translation, Form::Vector3},
                           {FIELD_rotation, Form::Rotation},
                           {FIELD_scaleFactor, Form::Vector3},
                           {FIELD_scaleOrientation, Form::Rotation},
                           {FIELD_center, Form::Vector3}}}),
    group(NODE_TransformSeparator, {}),
    leaf(NODE_Translation, {{{FIELD_translation, Form::Vector3}}}),
    group(NODE_WWWAnchor, {{{FIELD_name, Form::String},
                            {FIELD_description, Form::String},
                            {FIELD_map, Form::Enumeration, KIND_map}}}),
    leaf(NODE_WWWInline, {{{FIELD_name, Form::String},
                           {FIELD_bboxSize, Form::Vector3},
                           {FIELD_bboxCenter, Form::Vector3}}}),
}};

consteval bool nodeRulesAreInOrder() {
  for (std::size_t i = 0; i < nodeRules.size(); ++i) {
    if (static_cast<std::size_t>(nodeRules[i].type) != i) return false;
  }
  return true;
}
static_assert(nodeRulesAreInOrder());

}  // namespace varimesh
