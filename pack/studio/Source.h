#pragma once
// Picture sources as read: grids, parts and sprites, each a list of statements. assets/README.md describes
// the text.
#include "pack/studio/Expression.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace vesk::studio {

struct Grid {
  std::string name, file;
  int line = 0;
  int width = 0;
  std::vector<Colour> pixels;
  std::vector<std::string> passes;
};

struct Option {
  std::string name;
  Expression value;    // 1 for a bare word
  std::string word;    // text behind the equals sign
  Expression from, to; // of a recolour: from>to
};

struct Statement {
  std::string op;
  int line = 0;
  int slot = -1;     // the variable that let and for set
  std::string word;  // what put, draw and copy name; a text
  int wordSlot = -1; // the variable in its place
  std::vector<Expression> arguments;
  std::vector<std::pair<Expression, Expression>> points;
  std::vector<Option> options;
  std::vector<Statement> body, otherwise;
};

struct Parameter {
  std::string name;
  int slot = 0;
  Expression fallback;
};

// A part that others draw, or a sprite.
struct Part {
  std::string name, file;
  int line = 0;
  int slots = 0;
  bool sprite = false;
  std::vector<Parameter> parameters;
  std::vector<std::string> passes;
  std::vector<Statement> statements;
  int cellSize = 0;                // of the map of pieces; 0 without one
  std::vector<std::string> pieces; // rows of letters, a cell each
};

// Slots every part starts with.
enum : int { kSlotFrame, kSlotFrames, kSlotWidth, kSlotHeight, kSlotX, kSlotY, kFixedSlots };

class Library {
public:
  // Reads all .art files below the folder. Throws std::runtime_error with file and line.
  Library(const std::filesystem::path& folder, const Palette& palette);

  const Part* Sprite(const std::string& name) const;
  const Part* FindPart(const std::string& name) const;
  const Part* PartByNumber(double number) const;
  const Grid* FindGrid(const std::string& name) const;
  const Grid* GridByNumber(double number) const;
  // The pictures of which that file makes icons; they may stand in any file, or nowhere yet.
  std::vector<std::string> IconsIn(const std::string& file) const;
  // The texts a file's pictures depend on: its own and those it uses, in a fixed order.
  std::string TextsOf(const std::string& file) const;
  // Whether file may draw what stands in other.
  bool Uses(const std::string& file, const std::string& other) const;

private:
  struct File {
    std::string text;
    std::vector<std::string> uses, icons;
  };
  std::map<std::string, File> files_;
  std::map<std::string, Part> parts_, sprites_;
  std::map<std::string, Grid> grids_;
  std::vector<std::string> numberedParts_, numberedGrids_;
  std::map<std::string, double> constants_;
  const Palette* palette_;

  friend class Reader;
};

} // namespace vesk::studio
