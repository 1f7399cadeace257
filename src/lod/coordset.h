// The points of one Coordinate3 node, and the parameters of the level generation.
#pragma once

#include "lod/coord.h"
#include "values/bounds.h"

namespace varimesh {

class CoordSet : public RecordSet<Coord> {
 public:
  static float errorRange;         // tolerated error in percent of the screen height
  static float cameraHeightAngle;  // vertical opening angle of the viewer in radians
  static float minDiff;            // least fraction of used points that one level removes

  Bounds bounds;       // of the points, made cubic
  int shapeType = 0;   // of the shapes being simplified: 1 faces, 2 lines
  int currentLOD = 0;  // the last level generated

  // To be called with the box of the points before a level is made.
  void setBounds(const Bounds& box);
  void setShapeType(int kind) { shapeType = kind; }
  [[nodiscard]] int getCurrentLOD() const { return currentLOD; }
  // Numbers the points and writes the `point` field.
  void print(Output& out, int indent);
};

}  // namespace varimesh
