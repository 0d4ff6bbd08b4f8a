#include "pack/studio/Source.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>

namespace vesk::studio {

namespace {

constexpr double kFirstPart = 1e6, kFirstGrid = 2e6;

// How many numbers a statement takes before its options, least and most; points stand apart.
struct Form {
  const char* op;
  int least, most;
  bool points = false, block = false, named = false;
};
constexpr Form kForms[] = {
    {"let", 0, 0},
    {"for", 2, 3, false, true},
    {"if", 0, 0, false, true},
    {"else", 0, 0},
    {"end", 0, 0},
    {"frame", 0, 32},
    {"layer", 0, 2, false, true},
    {"blob", 1, 1, false, true},
    {"paint", 4, 4, false, true},
    {"draw", 0, 16, false, false, true},
    {"put", 2, 2, false, false, true},
    {"copy", 1, 3, false, false, true},
    {"icon", 1, 5, false, false, true},
    {"ell", 4, 5},
    {"cap", 5, 7},
    {"limb", 7, 9},
    {"poly", 0, 1, true},
    {"rect", 5, 5},
    {"bevel", 5, 5},
    {"line", 5, 5},
    {"px", 1, 1, true},
    {"gradient", 5, 16},
    {"text", 3, 3, false, false, true},
    {"dot", 1, 2},
    {"clip", 0, 4},
    {"wrap", 0, 1},
    {"outline", 0, 0},
    {"rim", 0, 0},
    {"glint", 0, 0},
    {"bulge", 0, 1},
    {"cylinder", 0, 0},
    {"despeckle", 0, 0},
    {"shade", 1, 1},
    {"recolour", 2, 2},
    {"flipx", 0, 0},
    {"flipy", 0, 0},
    {"turn", 0, 0},
    {"shift", 2, 2},
    {"narrow", 1, 1},
    {"fade", 1, 1},
};
constexpr const char* kPasses[] = {"outline",   "rim",  "glint", "bulge", "cylinder",
                                   "despeckle", "wrap", "free",  "flipx", "flipy"};
constexpr const char* kWords[] = {"cut",    "fx",     "fy",    "turn",   "dark",   "light",
                                  "line",   "full",   "under", "inside", "parted", "darkened",
                                  "shadow", "narrow", "alpha", "solid"};
constexpr const char* kValues[] = {"size",   "left", "top",   "mat",   "flat", "bias",
                                   "noise",  "seed", "rot",   "bevel", "bend", "alpha",
                                   "narrow", "dark", "light", "wide",  "scale"};

bool IsIn(std::string_view word, const auto& list) {
  return std::any_of(std::begin(list), std::end(list), [&](const char* w) { return word == w; });
}

std::vector<std::string> Words(const std::string& line) {
  std::vector<std::string> words;
  std::string word;
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') quoted = !quoted;
    if (c == '#' && !quoted) break;
    if (!quoted && (c == ' ' || c == '\t' || c == '\r')) {
      if (!word.empty()) words.push_back(word);
      word.clear();
    } else {
      word += c;
    }
  }
  if (!word.empty()) words.push_back(word);
  return words;
}

size_t CommaAtTop(const std::string& word) {
  int depth = 0;
  for (size_t i = 0; i < word.size(); ++i) {
    depth += (word[i] == '(') - (word[i] == ')');
    if (word[i] == ',' && depth == 0) return i;
  }
  return std::string::npos;
}

} // namespace

// Reads one file; a first pass over all files has already collected the names.
class Reader {
public:
  Reader(Library& library, std::string file) : library_(library), file_(std::move(file)) {}

  void CollectNames() {
    for (const auto& words : Lines()) {
      if (words.size() < 2) continue;
      if (words[0] == "part" || words[0] == "grid") {
        auto& list = words[0] == "part" ? library_.numberedParts_ : library_.numberedGrids_;
        if (std::find(list.begin(), list.end(), words[1]) != list.end())
          Fail(words[0] + " " + words[1] + " stands twice");
        list.push_back(words[1]);
      }
      if (words[0] == "use") library_.files_[file_].uses.push_back(words[1] + ".art");
    }
  }

  void Read() {
    Lines();
    for (at_ = 0; at_ < lines_.size(); ++at_) {
      const auto words = Words(lines_[at_]);
      if (words.empty() || words[0] == "use") continue;
      if (words[0] == "key")
        ReadKey(words);
      else if (words[0] == "grid")
        ReadGrid(words);
      else if (words[0] == "const")
        ReadConstant(words);
      else if (words[0] == "part" || words[0] == "sprite")
        ReadPart(words);
      else
        Fail("expected use, key, const, grid, part or sprite, not " + words[0]);
    }
  }

private:
  Library& library_;
  std::string file_;
  std::vector<std::string> lines_;
  size_t at_ = 0;
  std::map<char, Colour> key_;
  std::map<std::string, int> slots_;
  Part* pieces_ = nullptr; // the sprite being read, whose pieces may be told

  [[noreturn]] void Fail(const std::string& why) const {
    throw std::runtime_error("pictures/" + file_ + ":" + std::to_string(at_ + 1) + ": " + why);
  }

  std::vector<std::vector<std::string>> Lines() {
    std::istringstream in(library_.files_[file_].text);
    lines_.clear();
    for (std::string line; std::getline(in, line);) lines_.push_back(line);
    std::vector<std::vector<std::string>> all;
    for (at_ = 0; at_ < lines_.size(); ++at_) all.push_back(Words(lines_[at_]));
    return all;
  }

  Expression Parse(const std::string& text) const {
    const auto slotOf = [&](const std::string& name) {
      const auto it = slots_.find(name);
      return it == slots_.end() ? -1 : it->second;
    };
    const auto lookup = [&](const std::string& name, double& value) {
      if (const int ramp = library_.palette_->Ramp(name))
        value = ramp * kStepsPerRamp;
      else if (const auto c = library_.constants_.find(name); c != library_.constants_.end())
        value = c->second;
      else if (const auto p = std::find(library_.numberedParts_.begin(), library_.numberedParts_.end(), name);
               p != library_.numberedParts_.end())
        value = kFirstPart + static_cast<double>(p - library_.numberedParts_.begin());
      else if (const auto g = std::find(library_.numberedGrids_.begin(), library_.numberedGrids_.end(), name);
               g != library_.numberedGrids_.end())
        value = kFirstGrid + static_cast<double>(g - library_.numberedGrids_.begin());
      else
        return false;
      return true;
    };
    try {
      return ParseExpression(text, slotOf, lookup);
    } catch (const std::runtime_error& e) { Fail(e.what()); }
  }

  double Constant(const std::string& text) const {
    Scope scope{library_.palette_};
    return Evaluate(Parse(text), scope);
  }

  void ReadKey(const std::vector<std::string>& words) {
    for (size_t i = 1; i < words.size(); ++i) {
      if (words[i].size() < 3 || words[i][1] != '=')
        Fail("a key is a letter, = and a colour, not " + words[i]);
      const double colour = Constant(words[i].substr(2));
      const int ramp = static_cast<int>(colour) / kStepsPerRamp;
      if (static_cast<int>(colour) % kStepsPerRamp >= library_.palette_->Steps(ramp))
        Fail("no colour " + words[i].substr(2));
      key_[words[i][0]] = static_cast<Colour>(colour);
    }
  }

  void ReadConstant(const std::vector<std::string>& words) {
    if (words.size() != 4 || words[2] != "=") Fail("a constant is written: const NAME = VALUE");
    library_.constants_[words[1]] = Constant(words[3]);
  }

  void ReadGrid(const std::vector<std::string>& words) {
    if (words.size() < 2) Fail("a grid needs a name");
    Grid grid;
    grid.name = words[1], grid.file = file_, grid.line = static_cast<int>(at_) + 1;
    grid.passes.assign(words.begin() + 2, words.end());
    for (const auto& pass : grid.passes)
      if (!IsIn(pass, kPasses)) Fail("no pass is named " + pass);
    for (++at_;; ++at_) {
      if (at_ >= lines_.size()) Fail("grid " + grid.name + " has no end");
      std::string row = lines_[at_];
      while (!row.empty() && (row.back() == ' ' || row.back() == '\r')) row.pop_back();
      if (row == "end") break;
      if (grid.width == 0) grid.width = static_cast<int>(row.size());
      if (row.empty() || static_cast<int>(row.size()) != grid.width)
        Fail("this row is " + std::to_string(row.size()) + " wide, the first " + std::to_string(grid.width));
      for (const char c : row) {
        if (c != '.' && !key_.count(c)) Fail(std::string("no key for ") + c);
        grid.pixels.push_back(c == '.' ? kClear : key_[c]);
      }
    }
    if (grid.width == 0) Fail("grid " + grid.name + " is empty");
    library_.grids_[grid.name] = grid;
  }

  int Slot(const std::string& name) {
    return slots_.emplace(name, static_cast<int>(slots_.size())).first->second;
  }

  void ReadPart(const std::vector<std::string>& words) {
    if (words.size() < 2) Fail(words[0] + " needs a name");
    slots_ = {{"f", kSlotFrame},  {"n", kSlotFrames}, {"W", kSlotWidth},
              {"H", kSlotHeight}, {"x", kSlotX},      {"y", kSlotY}};
    Part part;
    part.name = words[1], part.file = file_, part.line = static_cast<int>(at_) + 1;
    part.sprite = words[0] == "sprite";
    for (size_t i = 2; i < words.size(); ++i) {
      if (part.sprite) {
        if (!IsIn(words[i], kPasses)) Fail("no pass is named " + words[i]);
        part.passes.push_back(words[i]);
        continue;
      }
      const size_t equals = words[i].find('=');
      Parameter parameter;
      parameter.name = words[i].substr(0, equals);
      parameter.fallback = Parse(equals == std::string::npos ? "0" : words[i].substr(equals + 1));
      // Parameters may be called x and y without being those of a pixel.
      parameter.slot = static_cast<int>(slots_.size());
      if (slots_.count(parameter.name)) slots_[" " + parameter.name] = 0;
      slots_[parameter.name] = parameter.slot;
      part.parameters.push_back(parameter);
    }
    const std::string what = words[0] + " " + words[1];
    pieces_ = part.sprite ? &part : nullptr;
    part.statements = ReadBlock(what, nullptr);
    part.slots = static_cast<int>(slots_.size()) + 1;
    auto& map = part.sprite ? library_.sprites_ : library_.parts_;
    if (!map.emplace(part.name, part).second) Fail(what + " stands twice");
  }

  // Statements up to "end", or to "else" when that is allowed and then told.
  std::vector<Statement> ReadBlock(const std::string& what, bool* stoppedAtElse) {
    std::vector<Statement> list;
    const size_t start = at_;
    for (++at_; at_ < lines_.size(); ++at_) {
      const auto words = Words(lines_[at_]);
      if (words.empty()) continue;
      if (words[0] == "end") return list;
      if (words[0] == "else") {
        if (!stoppedAtElse) Fail("else without if");
        *stoppedAtElse = true;
        return list;
      }
      if (words[0] == "pieces")
        ReadPieces(words);
      else
        list.push_back(ReadStatement(words));
    }
    at_ = start;
    Fail(what + " has no end");
  }

  void ReadPieces(const std::vector<std::string>& words) {
    if (!pieces_) Fail("only a sprite has pieces");
    if (words.size() != 2) Fail("pieces takes the size of a cell");
    pieces_->cellSize = static_cast<int>(Constant(words[1]));
    if (pieces_->cellSize < 1) Fail("a cell is at least one pixel wide");
    for (++at_;; ++at_) {
      if (at_ >= lines_.size()) Fail("pieces has no end");
      const auto row = Words(lines_[at_]);
      if (row.size() != 1) Fail("a row of pieces is one word");
      if (row[0] == "end") {
        if (pieces_->pieces.empty()) Fail("pieces has no rows");
        return;
      }
      if (!pieces_->pieces.empty() && row[0].size() != pieces_->pieces[0].size())
        Fail("all rows of pieces are equally wide");
      pieces_->pieces.push_back(row[0]);
    }
  }

  Statement ReadStatement(const std::vector<std::string>& words) {
    Statement s;
    s.op = words[0], s.line = static_cast<int>(at_) + 1;
    const Form* form =
        std::find_if(std::begin(kForms), std::end(kForms), [&](const Form& f) { return s.op == f.op; });
    if (form == std::end(kForms)) Fail("no statement is named " + s.op);
    size_t i = 1;
    if (s.op == "let") return ReadLet(s, words);
    if (s.op == "if") {
      std::string condition;
      for (; i < words.size(); ++i) condition += words[i];
      s.arguments.push_back(Parse(condition));
      bool otherwise = false;
      s.body = ReadBlock("if", &otherwise);
      if (otherwise) s.otherwise = ReadBlock("else", nullptr);
      return s;
    }
    if (s.op == "for") {
      if (words.size() < 4) Fail("for needs a name, the first and the last number");
      s.slot = Slot(words[i++]);
    }
    if (form->named) {
      if (i >= words.size()) Fail(s.op + " needs a name");
      s.word = words[i++];
      if (s.op == "icon") {
        auto& icons = library_.files_[file_].icons;
        if (std::find(icons.begin(), icons.end(), s.word) == icons.end()) icons.push_back(s.word);
      }
      if (const auto it = slots_.find(s.word); it != slots_.end()) s.wordSlot = it->second;
    }
    for (; i < words.size(); ++i) ReadWord(s, *form, words[i]);
    if (static_cast<int>(s.arguments.size()) < form->least ||
        static_cast<int>(s.arguments.size()) > form->most)
      Fail(s.op + " takes " + std::to_string(form->least) +
           (form->most > form->least ? " to " + std::to_string(form->most) : std::string()) +
           " values, not " + std::to_string(s.arguments.size()));
    if (form->points && s.points.empty()) Fail(s.op + " needs points");
    if (form->block) s.body = ReadBlock(s.op, nullptr);
    return s;
  }

  Statement ReadLet(Statement s, const std::vector<std::string>& words) {
    if (words.size() < 4 || words[2] != "=") Fail("a variable is written: let NAME = VALUE");
    std::string value;
    for (size_t i = 3; i < words.size(); ++i) value += words[i];
    s.arguments.push_back(Parse(value));
    s.slot = Slot(words[1]);
    return s;
  }

  void ReadWord(Statement& s, const Form& form, const std::string& word) {
    if (s.op == "frame") { // 2 or 0-3
      const size_t dash = word.find('-', 1);
      s.points.emplace_back(Parse(word.substr(0, dash)),
                            Parse(dash == std::string::npos ? word : word.substr(dash + 1)));
      return;
    }
    if (form.points)
      if (const size_t comma = CommaAtTop(word); comma != std::string::npos) {
        s.points.emplace_back(Parse(word.substr(0, comma)), Parse(word.substr(comma + 1)));
        return;
      }
    const size_t equals = word.find('=');
    if (equals != std::string::npos && equals > 0 && word[equals + 1] != '=' &&
        std::string("<>!=").find(word[equals - 1]) == std::string::npos) {
      Option option;
      option.name = word.substr(0, equals), option.word = word.substr(equals + 1);
      if (s.op != "draw" && !IsIn(option.name, kValues)) Fail(s.op + " has no option " + option.name);
      if (option.name != "mat") option.value = Parse(option.word);
      s.options.push_back(option);
      return;
    }
    if (IsIn(word, kWords) && !slots_.count(word)) {
      Option option;
      option.name = word, option.value.value = 1;
      s.options.push_back(option);
      return;
    }
    if (const size_t arrow = word.find('>');
        (s.op == "put" || s.op == "copy" || s.op == "icon") && arrow != std::string::npos) {
      Option option;
      option.name = ">", option.from = Parse(word.substr(0, arrow)),
      option.to = Parse(word.substr(arrow + 1));
      s.options.push_back(option);
      return;
    }
    s.arguments.push_back(Parse(word));
  }
};

Library::Library(const std::filesystem::path& folder, const Palette& palette) : palette_(&palette) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.path().extension() != ".art") continue;
    std::ifstream in(entry.path(), std::ios::binary);
    if (!in) throw std::runtime_error(entry.path().string() + ": can't be read");
    files_[std::filesystem::relative(entry.path(), folder).generic_string()].text.assign(
        std::istreambuf_iterator<char>(in), {});
  }
  // In order of use, so that constants stand before they are needed.
  std::vector<std::string> names, order;
  for (const auto& [name, file] : files_) names.push_back(name);
  for (const auto& name : names) Reader(*this, name).CollectNames();
  std::set<std::string> seen, open;
  const std::function<void(const std::string&)> visit = [&](const std::string& name) {
    if (open.count(name)) throw std::runtime_error("pictures/" + name + ": files use each other in a circle");
    if (!seen.insert(name).second) return;
    open.insert(name);
    for (const auto& other : files_[name].uses) {
      if (!files_.count(other))
        throw std::runtime_error("pictures/" + name + ": uses " + other + ", which isn't there");
      visit(other);
    }
    open.erase(name);
    order.push_back(name);
  };
  for (const auto& name : names) visit(name);
  for (const auto& name : order) Reader(*this, name).Read();
}

const Part* Library::Sprite(const std::string& name) const {
  const auto it = sprites_.find(name);
  return it == sprites_.end() ? nullptr : &it->second;
}

const Part* Library::FindPart(const std::string& name) const {
  const auto it = parts_.find(name);
  return it == parts_.end() ? nullptr : &it->second;
}

const Part* Library::PartByNumber(double number) const {
  const auto i = static_cast<size_t>(number - kFirstPart);
  return number >= kFirstPart && i < numberedParts_.size() ? FindPart(numberedParts_[i]) : nullptr;
}

const Grid* Library::FindGrid(const std::string& name) const {
  const auto it = grids_.find(name);
  return it == grids_.end() ? nullptr : &it->second;
}

const Grid* Library::GridByNumber(double number) const {
  const auto i = static_cast<size_t>(number - kFirstGrid);
  return number >= kFirstGrid && i < numberedGrids_.size() ? FindGrid(numberedGrids_[i]) : nullptr;
}

bool Library::Uses(const std::string& file, const std::string& other) const {
  if (file == other) return true;
  const auto& uses = files_.at(file).uses;
  return std::any_of(uses.begin(), uses.end(), [&](const std::string& used) { return Uses(used, other); });
}

std::vector<std::string> Library::IconsIn(const std::string& file) const { return files_.at(file).icons; }

std::string Library::TextsOf(const std::string& file) const {
  std::string texts;
  for (const auto& [name, other] : files_)
    if (Uses(file, name)) texts += name + "\n" + other.text + "\n";
  return texts;
}

} // namespace vesk::studio
