#pragma once
// What a frame draws into the room or over it: pictures by name and lines of text.
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

class EditorDesk;
class Simulation;

struct Box {
  double left, top, right, bottom; // right and bottom are the first pixels outside

  bool Holds(const Box& inner) const {
    return inner.left >= left && inner.right <= right && inner.top >= top && inner.bottom <= bottom;
  }
  bool HoldsPoint(double x, double y) const { return x >= left && x < right && y >= top && y < bottom; }
  bool operator==(const Box&) const = default;
  bool Touches(const Box& other) const {
    return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
  }
  std::string Words() const;
};

struct DrawnPicture {
  std::string name;    // of a sprite or background; "" for a plain area
  int32_t frame;       // of a sprite
  int32_t column, row; // of a part of a background: where it begins in it, pixels
  Box box;             // without what is empty around the picture
  uint32_t colour;     // ARGB

  bool operator==(const DrawnPicture&) const = default;
};
std::ostream& operator<<(std::ostream& out, const DrawnPicture& picture);

struct DrawnLine {
  std::string text;
  double left, top, right; // the pen before its first and after its last letter, and the top of its cells
  Box ink;
  Box firstLetter;
  size_t over; // pictures drawn before it
};
std::ostream& operator<<(std::ostream& out, const DrawnLine& line);

struct DrawnFrame {
  std::vector<DrawnPicture> pictures; // in the order in which they are drawn
  std::vector<DrawnLine> lines;

  std::optional<DrawnPicture> Find(const std::string& name) const; // the last of the name
  bool Reads(const std::string& text) const;                       // whether a line says just that
  std::string Words() const;                                       // all lines
};

// Runs a frame and looks at what it drew over the room, in view pixels, or into it, in room pixels.
DrawnFrame LookAtFrame(Simulation& game);
DrawnFrame LookAtFrame(EditorDesk& desk);
DrawnFrame LookAtRoom(EditorDesk& desk);

// What is wrong with the frame's texts and buttons, a sentence each: a line that leaves the view or the
// picture that it begins on, that something covers, or that runs into another line; buttons that overlap.
std::vector<std::string> Misfits(const DrawnFrame& frame);

} // namespace vesk
