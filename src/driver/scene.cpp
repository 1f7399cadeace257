#include "driver/scene.h"

#include <cstdio>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "driver/texts.h"
#include "lod/coordset.h"

namespace varimesh {

namespace {

// For a node that the program makes.
NodeInit made(NodeType type, int line) {
  NodeInit init;
  init.type = type;
  init.firstLine = init.lastLine = line;
  return init;
}

std::unique_ptr<Node> makeHeader() {
  const std::time_t now = std::time(nullptr);
  std::vector<std::string> text{texts::header(std::ctime(&now))};
  NodeInit init = made(NODE_Info, 0);
  init.fields.emplace_back(FIELD_string, std::make_unique<FString>(std::move(text)));
  return std::make_unique<Node>(std::move(init));
}

// Puts the header node first: into the group that holds the whole scene, or, when there is none,
// into a new separator round the scene. Other grouping nodes give their first child a meaning.
NodeList insertHeader(NodeList tree) {
  GroupNode* const top = tree.size() == 1 ? tree.front()->asGroup() : nullptr;
  if (top != nullptr && (top->type == NODE_Group || top->type == NODE_Separator ||
                         top->type == NODE_TransformSeparator)) {
    top->children.insert(top->children.begin(), makeHeader());
    return tree;
  }
  tree.insert(tree.begin(), makeHeader());
  auto separator =
      std::make_unique<SeparatorNode>(made(NODE_Separator, 0), std::exchange(tree, {}));
  tree.push_back(std::move(separator));
  return tree;
}

}  // namespace

Scene::DefaultNodes::DefaultNodes()
    : coord(made(NODE_Coordinate3, -1)),
      material(made(NODE_Material, -1)),
      normal(made(NODE_Normal, -1)),
      textureCoord(made(NODE_TextureCoordinate2, -1)),
      texture(made(NODE_Texture2, -1)) {}

Scene::Scene(NodeList tree) : root_("#VRML V1.0 ascii", insertHeader(std::move(tree))) {}

void Scene::resolveDependencies() {
  State state;
  state.coordNode = &defaults_.coord;
  state.materialNode = &defaults_.material;
  state.normalNode = &defaults_.normal;
  state.textureCoordNode = &defaults_.textureCoord;
  state.textureNode = &defaults_.texture;
  root_.setupDepends(state);
}

void Scene::searchCamera() {
  Node* camera = nullptr;
  root_.setupCamera(camera);
  if (camera == nullptr) return;
  if (const auto* angle = camera->getValue<FFloat>(FIELD_heightAngle)) {
    CoordSet::cameraHeightAngle = angle->values.front();
  }
}

int Scene::join() {
  root_.join();
  return Node::removedcount;
}

void Scene::printTree() {
  Output listing(stdout);
  root_.printTree(listing, 0);
  listing.put('\n');
}

}  // namespace varimesh
