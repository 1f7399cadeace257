// The texts in which the program speaks of itself, and what they are made of.
#pragma once

#include <string>

namespace varimesh::texts {

inline constexpr char release[] = "1.01";
inline constexpr char authors[] = "the VARIMESH developers";
inline constexpr char institution[] = "the VARIMESH project";
inline constexpr char address[] = "https://varimesh.example/";

// The first lines on standard output.
inline std::string banner() {
  return std::string("VARIMESH Level of Detail Generator for VRML 1.0 Release ") + release + "\n\n";
}

// What --copyright adds to the banner.
inline std::string notice() {
  return std::string("Copyright (C) 2026 ") + institution + "\n" +  //
         "Authors: " + authors + "\n" +                             //
         "URL: " + address + "\n\n";
}

// The text of the header node of every written file. The date brings its own line end.
inline std::string header(const std::string& date) {
  return std::string("Created by VARIMESH - Level of Detail Generator Release ") + release + "\n" +
         "\n" +                               //
         "authors: " + authors + "\n" +       //
         "contact: " + institution + "\n" +   //
         "         URL: " + address + "\n" +  //
         "date:    " + date;
}

// The explanation of the command line.
inline constexpr const char* options =
    "   general-options:\n"
    "      (-o | --output) outputfile          (-j | --join)\n"
    "      (-n | --nolods)                     (-C | --copyright)\n"
    "      (-v | --verbose) section['+'section]*\n"
    "   lod-options:\n"
    "      (-1 | --errorarea) weight           (-m | --mindiff) percentage\n"
    "      (-2 | --errorvolume) weight         (-x | --extract) lod\n"
    "      (-3 | --weightedmean) weight        (-l | --nolines)\n"
    "      (-c | --cameraheightangle) radian   (-q | --noquads)\n"
    "      (-e | --errorrange) percentage      (-s | --quadsplitangle) radian\n"
    "   format-options:\n"
    "      (-I | --indent) count               (-D | --decimalcountperline) count\n"
    "      (-T | --tab) count                  (-F | --floatcountperline) count\n"
    "      (-N | --noindent)\n"
    "\n";

}  // namespace varimesh::texts
