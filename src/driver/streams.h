// Standard streams that are not what one takes for granted.
#pragma once

namespace varimesh {

// Makes sure that no file opened later takes the place of a closed standard stream, and would get
// what is meant for the stream; and that a reader that has gone, or a file that has grown as large
// as it may, is an error like any other instead of a silent death.
void guardStandardStreams();

// Writes out what is left of standard output. Answers false, with a message, when anything that
// was written to it has been lost.
bool closeStandardOutput();

}  // namespace varimesh
