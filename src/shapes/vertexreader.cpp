#include "shapes/vertexreader.h"

#include "scene/attributenodes.h"

namespace varimesh {
namespace {

using Source = IndexReader::Source;

Source choose(bool isThere, const VertexReader::Sources& sources, int binding) {
  return isThere ? sources[static_cast<std::size_t>(binding)] : Source::none;
}

}  // namespace

VertexReader::VertexReader(ShapeNode& shape, const Sources& sources)
    : shape_(shape),
      materials_(shape, FIELD_materialIndex,
                 choose(shape.getMaterialSet().count > 1, sources, shape.state.materialBinding)),
      normals_(shape, FIELD_normalIndex,
               choose(!shape.getNormalSet().isEmpty(), sources, shape.state.normalBinding)),
      textureCoords_(shape, FIELD_textureCoordIndex,
                     shape.getField(FIELD_textureCoordIndex) != nullptr &&
                             !shape.getTextureCoordSet().isEmpty()
                         ? Source::listByVertex
                         : Source::none),
      attributes_{shape.materialBinding, shape.normalBinding,
                  materials_.getSource() != Source::none, normals_.getSource() != Source::none,
                  textureCoords_.getSource() != Source::none} {}

// Materials, normals, texture coordinates, coordinates: the first fault in this order is reported.
void VertexReader::read(const Polygon& polygon) {
  const std::size_t n = polygon.positions.size();
  vertices_.assign(n, Vertex());
  for (std::size_t i = 0; i < materials_.getCount(n); ++i) {
    vertices_[i].material = shape_.getMaterialIndex(materials_.read(polygon, i));
  }
  materials_.endPolygon();
  for (std::size_t i = 0; i < normals_.getCount(n); ++i) {
    const int index = normals_.read(polygon, i);
    if (normals_.isCounted() && index > shape_.getNormalSet().getMaxIndex()) {
      shape_.error("not enough normals defined\n");
    }
    vertices_[i].normal = shape_.getNormalIndex(index);
  }
  normals_.endPolygon();
  for (std::size_t i = 0; i < textureCoords_.getCount(n); ++i) {
    vertices_[i].textureCoord = shape_.getTextureCoordIndex(textureCoords_.read(polygon, i));
  }
  textureCoords_.endPolygon();
  for (std::size_t i = 0; i < n; ++i) {
    vertices_[i].coord = shape_.getCoordIndex(polygon.positions[i]);
  }
}

}  // namespace varimesh
