#include "reader/nodefactory.h"

#include <array>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "scene/attributenodes.h"
#include "scene/bindingnodes.h"
#include "scene/cameranodes.h"
#include "scene/transformnodes.h"
#include "shapes/facenode.h"
#include "shapes/linenode.h"
#include "shapes/simpleshapes.h"

namespace varimesh {
namespace {

using Maker = std::unique_ptr<Node> (*)(NodeInit&&, NodeList&&);

template <class NodeClass>
std::unique_ptr<Node> make(NodeInit&& init, NodeList&& children) {
  if constexpr (std::is_base_of_v<GroupNode, NodeClass>) {
    return std::make_unique<NodeClass>(std::move(init), std::move(children));
  } else {
    return std::make_unique<NodeClass>(std::move(init));
  }
}

consteval std::array<Maker, NODE_NONE> makeMakers() {
  struct Entry {
    NodeType type;
    Maker maker;
  };
  constexpr Entry special[] = {
      {NODE_Cone, make<ConeNode>},
      {NODE_Coordinate3, make<CoordNode>},
      {NODE_Cube, make<CubeNode>},
      {NODE_Cylinder, make<CylinderNode>},
      {NODE_Group, make<GroupNode>},
      {NODE_IndexedFaceSet, make<FaceNode>},
      {NODE_IndexedLineSet, make<LineNode>},
      {NODE_LOD, make<GroupNode>},
      {NODE_LevelOfDetail, make<GroupNode>},
      {NODE_Material, make<MaterialNode>},
      {NODE_MaterialBinding, make<MaterialBindingNode>},
      {NODE_MatrixTransform, make<MatrixTransformNode>},
      {NODE_Normal, make<NormalNode>},
      {NODE_NormalBinding, make<NormalBindingNode>},
      {NODE_OrthographicCamera, make<OrthographicCameraNode>},
      {NODE_PerspectiveCamera, make<PerspectiveCameraNode>},
      {NODE_PointSet, make<PointNode>},
      {NODE_Rotation, make<RotationNode>},
      {NODE_Scale, make<ScaleNode>},
      {NODE_Separator, make<SeparatorNode>},
      {NODE_ShapeHints, make<ShapeHintsNode>},
      {NODE_Sphere, make<SphereNode>},
      {NODE_Switch, make<GroupNode>},
      {NODE_Texture2, make<TextureNode>},
      {NODE_TextureCoordinate2, make<TextureCoordNode>},
      {NODE_Transform, make<TransformNode>},
      {NODE_TransformSeparator, make<TransformSeparatorNode>},
      {NODE_Translation, make<TranslationNode>},
      {NODE_WWWAnchor, make<SeparatorNode>},
  };
  std::array<Maker, NODE_NONE> makers{};
  makers.fill(make<Node>);
  for (const Entry& entry : special) makers[static_cast<std::size_t>(entry.type)] = entry.maker;
  return makers;
}

constexpr std::array<Maker, NODE_NONE> makers = makeMakers();

}  // namespace

std::unique_ptr<Node> makeNode(NodeInit&& init, NodeList&& children) {
  const auto type = static_cast<std::size_t>(init.type);
  return makers[type](std::move(init), std::move(children));
}

}  // namespace varimesh
