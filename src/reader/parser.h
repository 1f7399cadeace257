// The parser: builds the node tree from the tokens of the scanner.
#pragma once

#include <memory>
#include <vector>

#include "scene/node.h"

namespace varimesh {

extern std::vector<std::unique_ptr<Node>> yacc_tree;  // the top-level nodes of the last file read
extern int yacc_nolods;  // non-zero: LOD and LevelOfDetail nodes are read, not refused

// Reads the scanner's text. 0: all of it was read and is in yacc_tree; 1: it is no valid scene or
// holds levels of detail; 2: it is nested too deeply. The reason is on standard error then.
int yyparse();

// Reports a fault at the last token read.
void yyerror(const char* message);

}  // namespace varimesh
