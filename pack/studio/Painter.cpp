#include "pack/studio/Painter.h"

#include "pack/studio/Canvas.h"
#include "pack/studio/Icon.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <stdexcept>

namespace vesk::studio {

namespace {

constexpr int kDeepest = 24; // parts within parts

bool Has(const std::vector<std::string>& list, const char* word) {
  return std::find(list.begin(), list.end(), word) != list.end();
}

int Whole(double value) { return static_cast<int>(std::floor(value + .5)); }

class Painter {
public:
  Painter(const Library& library, const Palette& palette, const std::vector<PictureSpec>& specs,
          const FramesOf& framesOf)
      : library_(library), palette_(palette), specs_(specs), framesOf_(framesOf) {}

  Canvas Frame(const PictureSpec& spec, int frame, int onlySet = -1) {
    const Part* part = library_.Sprite(spec.name);
    Canvas canvas(palette_, spec.width, spec.height);
    std::optional<Pieces> pieces;
    if (!part->pieces.empty()) {
      pieces.emplace(part->pieces, part->cellSize);
      pieces->only = onlySet;
      canvas.pieces = &*pieces;
    }
    canvas.wrap = Has(part->passes, "wrap");
    if (!spec.boxByHand && !spec.background && !Has(part->passes, "free"))
      canvas.clip = {spec.boxLeft, spec.boxTop, spec.boxRight, spec.boxBottom};
    const Area box = canvas.clip;
    // The outline ends on the box, so what it goes round stays one pixel inside.
    if (Has(part->passes, "outline"))
      canvas.clip = {box.left + 1, box.top + 1, box.right - 1, box.bottom - 1};
    frame_ = frame, frames_ = spec.frames;
    std::vector<double> slots(static_cast<size_t>(part->slots));
    RunPart(*part, slots, canvas, nullptr);
    canvas.clip = box;
    RunPasses(part->passes, canvas);
    canvas.pieces = nullptr;
    return canvas;
  }

private:
  const Library& library_;
  const Palette& palette_;
  const std::vector<PictureSpec>& specs_;
  const FramesOf& framesOf_;
  int frame_ = 0, frames_ = 1, depth_ = 0;

  // What the statements of one part share.
  struct Run {
    const Part& part;
    Canvas* canvas;
    std::vector<Solid>* solids; // of the blob being gathered, or null
    Scope scope;
    bool thisFrame = true;
    const Statement* at = nullptr;
  };

  [[noreturn]] void Fail(const Run& run, const std::string& why) const {
    throw std::runtime_error("pictures/" + run.part.file + ":" +
                             std::to_string(run.at ? run.at->line : run.part.line) + ": " + run.part.name +
                             ": " + why);
  }

  void RunPart(const Part& part, std::vector<double>& slots, Canvas& canvas, std::vector<Solid>* solids) {
    Run run{part, &canvas, solids, {}};
    if (++depth_ > kDeepest) Fail(run, "parts draw each other without end");
    slots[kSlotFrame] = frame_, slots[kSlotFrames] = frames_;
    slots[kSlotWidth] = canvas.Width(), slots[kSlotHeight] = canvas.Height();
    run.scope = {&palette_, &canvas, slots.data()};
    Block(run, part.statements);
    --depth_;
  }

  void RunPasses(const std::vector<std::string>& passes, Canvas& canvas) {
    for (const auto& pass : passes) Pass(pass, canvas, 1);
  }

  static bool Pass(const std::string& op, Canvas& canvas, double by) {
    if (op == "outline")
      canvas.Outline();
    else if (op == "rim")
      canvas.Rim();
    else if (op == "glint")
      canvas.Glint();
    else if (op == "bulge")
      canvas.Bulge(by);
    else if (op == "cylinder")
      canvas.Cylinder();
    else if (op == "despeckle")
      canvas.Despeckle();
    else if (op == "flipx")
      canvas.FlipX();
    else if (op == "flipy")
      canvas.FlipY();
    else
      return false;
    return true;
  }

  void Block(Run& run, const std::vector<Statement>& statements) {
    for (const Statement& s : statements) {
      run.at = &s;
      if (s.op == "frame")
        run.thisFrame = FrameIsMeant(run, s);
      else if (run.thisFrame)
        Step(run, s);
    }
  }

  bool FrameIsMeant(Run& run, const Statement& s) {
    for (const auto& [first, last] : s.points)
      if (frame_ >= Evaluate(first, run.scope) && frame_ <= Evaluate(last, run.scope)) return true;
    return s.points.empty();
  }

  double Number(Run& run, const Statement& s, size_t i, double fallback = 0) {
    return i < s.arguments.size() ? Evaluate(s.arguments[i], run.scope) : fallback;
  }

  Colour ToColour(Run& run, double value) {
    if (value >= kGrey) return static_cast<Colour>(value);
    const int colour = static_cast<int>(value), ramp = colour / kStepsPerRamp;
    if (colour == 0) return kClear;
    if (colour < 0 || ramp < 1 || ramp >= 4096 || palette_.Rgba(static_cast<Colour>(colour)) == 0)
      Fail(run, "no such colour");
    return palette_.Step(static_cast<Colour>(colour), 0);
  }

  int ToRamp(Run& run, double value) { return ToColour(run, value) / kStepsPerRamp; }

  const Option* Find(const Statement& s, const char* name) const {
    for (const Option& o : s.options)
      if (o.name == name) return &o;
    return nullptr;
  }
  double Value(Run& run, const Statement& s, const char* name, double fallback) {
    const Option* o = Find(s, name);
    return o ? Evaluate(o->value, run.scope) : fallback;
  }
  uint8_t Alpha(Run& run, const Statement& s) {
    return static_cast<uint8_t>(std::clamp(Value(run, s, "alpha", 255), 0.0, 255.0));
  }

  void Step(Run& run, const Statement& s) {
    Canvas& canvas = *run.canvas;
    const auto number = [&](size_t i, double fallback = 0) { return Number(run, s, i, fallback); };
    if (s.op == "let") {
      run.scope.slots[s.slot] = number(0);
    } else if (s.op == "if") {
      Block(run, number(0) != 0 ? s.body : s.otherwise);
    } else if (s.op == "for") {
      const double last = number(1), by = number(2, 1);
      if (by == 0) Fail(run, "a step of 0 never ends");
      for (double v = number(0); by > 0 ? v <= last : v >= last; v += by) {
        run.scope.slots[s.slot] = v;
        Block(run, s.body);
      }
      run.thisFrame = true;
    } else if (s.op == "dot") {
      const double value = number(0);
      canvas.Set(Whole(run.scope.slots[kSlotX]), Whole(run.scope.slots[kSlotY]),
                 {ToColour(run, value), static_cast<uint8_t>(std::clamp(number(1, 255), 0.0, 255.0))});
    } else if (s.op == "paint") {
      EachPixel(run, s);
    } else if (s.op == "layer") {
      Layer(run, s);
    } else if (s.op == "blob") {
      std::vector<Solid> solids;
      Blob(run, s, solids);
    } else if (s.op == "draw") {
      DrawPart(run, s);
    } else if (s.op == "put" || s.op == "copy") {
      Stamp(run, s);
    } else if (s.op == "icon") {
      Icon(run, s);
    } else if (s.op == "ell" || s.op == "cap" || s.op == "limb" || s.op == "poly") {
      Shape(run, s);
    } else if (s.op == "rect" || s.op == "bevel") {
      Rectangle(run, s);
    } else if (s.op == "line") {
      const Dot dot{ToColour(run, number(4)), Alpha(run, s)};
      const double wide = Value(run, s, "wide", 1);
      if (wide <= 1)
        canvas.Line(number(0), number(1), number(2), number(3), dot);
      else
        DrawFlat(run, Capsule(number(0), number(1), number(2), number(3), wide / 2, wide / 2), dot);
    } else if (s.op == "px") {
      const Dot dot{ToColour(run, number(0)), Alpha(run, s)};
      for (const auto& [x, y] : s.points)
        canvas.Set(Whole(Evaluate(x, run.scope)), Whole(Evaluate(y, run.scope)), dot);
    } else if (s.op == "gradient") {
      Gradient(run, s);
    } else if (s.op == "text") {
      Text(run, s);
    } else if (s.op == "clip") {
      canvas.clip = {0, 0, canvas.Width() - 1, canvas.Height() - 1};
      if (s.arguments.size() == 4)
        canvas.clip = {Whole(number(0)), Whole(number(1)), Whole(number(0) + number(2)) - 1,
                       Whole(number(1) + number(3)) - 1};
    } else if (s.op == "wrap") {
      canvas.wrap = number(0, 1) != 0;
    } else if (s.op == "shade") {
      canvas.Shade(Whole(number(0)));
    } else if (s.op == "recolour") {
      canvas.Recolour(ToRamp(run, number(0)), ToRamp(run, number(1)));
    } else if (s.op == "shift") {
      canvas.Shift(Whole(number(0)), Whole(number(1)));
    } else if (s.op == "fade") {
      canvas.Fade(static_cast<uint8_t>(std::clamp(number(0), 0.0, 255.0)));
    } else if (s.op == "turn") {
      if (canvas.Width() != canvas.Height()) Fail(run, "only a square picture can be turned");
      canvas.Turn();
    } else if (!Pass(s.op, canvas, number(0, 1))) {
      Fail(run, s.op + " can't stand here");
    }
  }

  void EachPixel(Run& run, const Statement& s) {
    const int left = Whole(Number(run, s, 0)), top = Whole(Number(run, s, 1));
    const int right = left + Whole(Number(run, s, 2)), bottom = top + Whole(Number(run, s, 3));
    double *x = &run.scope.slots[kSlotX], *y = &run.scope.slots[kSlotY];
    const double oldX = *x, oldY = *y;
    for (int j = top; j < bottom; ++j)
      for (int i = left; i < right; ++i) {
        if (run.canvas->pieces && !run.canvas->pieces->Takes(i, j, Pieces::kAny)) continue;
        *x = i, *y = j;
        Block(run, s.body);
      }
    *x = oldX, *y = oldY;
  }

  void Layer(Run& run, const Statement& s) {
    Canvas layer(palette_, run.canvas->Width(), run.canvas->Height());
    layer.wrap = run.canvas->wrap;
    layer.clip = run.canvas->clip;
    layer.pieces = run.canvas->pieces;
    Canvas* const below = run.canvas;
    run.canvas = &layer;
    run.scope.canvas = &layer;
    Block(run, s.body);
    run.canvas = below;
    run.scope.canvas = below;
    run.thisFrame = true;
    run.at = &s;
    StampCanvas(run, s, layer, Number(run, s, 0), Number(run, s, 1));
  }

  void Blob(Run& run, const Statement& s, std::vector<Solid>& solids) {
    std::vector<Solid>* const outer = run.solids;
    run.solids = &solids;
    Block(run, s.body);
    run.solids = outer;
    run.thisFrame = true;
    run.at = &s;
    if (!solids.empty()) run.canvas->Draw(Union(solids), PaintOf(run, s, Number(run, s, 0)));
  }

  void DrawPart(Run& run, const Statement& s) {
    const Part* part =
        s.wordSlot >= 0 ? library_.PartByNumber(run.scope.slots[s.wordSlot]) : library_.FindPart(s.word);
    if (!part) Fail(run, "no part is named " + s.word);
    if (!library_.Uses(run.part.file, part->file) && s.wordSlot < 0)
      Fail(run, "add a line: use " + part->file.substr(0, part->file.size() - 4));
    std::vector<double> slots(static_cast<size_t>(part->slots));
    if (s.arguments.size() > part->parameters.size()) Fail(run, part->name + " takes fewer values");
    for (size_t i = 0; i < part->parameters.size(); ++i)
      slots[part->parameters[i].slot] = i < s.arguments.size()
                                            ? Evaluate(s.arguments[i], run.scope)
                                            : Evaluate(part->parameters[i].fallback, run.scope);
    for (const Option& o : s.options) {
      const auto p = std::find_if(part->parameters.begin(), part->parameters.end(),
                                  [&](const Parameter& q) { return q.name == o.name; });
      if (p == part->parameters.end()) Fail(run, "part " + part->name + " takes no " + o.name);
      slots[p->slot] = Evaluate(o.value, run.scope);
    }
    // A part keeps its own clip and wrap to itself.
    const Area clip = run.canvas->clip;
    const bool wrap = run.canvas->wrap;
    RunPart(*part, slots, *run.canvas, run.solids);
    run.canvas->clip = clip, run.canvas->wrap = wrap;
  }

  Canvas GridCanvas(const Grid& grid) {
    Canvas canvas(palette_, grid.width, static_cast<int>(grid.pixels.size()) / grid.width);
    for (size_t i = 0; i < grid.pixels.size(); ++i)
      canvas.Set(static_cast<int>(i) % grid.width, static_cast<int>(i) / grid.width, {grid.pixels[i], 255});
    RunPasses(grid.passes, canvas);
    return canvas;
  }

  void Stamp(Run& run, const Statement& s) {
    if (s.op == "put") {
      const Grid* grid =
          s.wordSlot >= 0 ? library_.GridByNumber(run.scope.slots[s.wordSlot]) : library_.FindGrid(s.word);
      if (!grid) Fail(run, "no grid is named " + s.word);
      if (!library_.Uses(run.part.file, grid->file) && s.wordSlot < 0)
        Fail(run, "add a line: use " + grid->file.substr(0, grid->file.size() - 4));
      StampCanvas(run, s, GridCanvas(*grid), Number(run, s, 0), Number(run, s, 1));
      return;
    }
    const Part* sprite = library_.Sprite(s.word);
    const auto spec =
        std::find_if(specs_.begin(), specs_.end(), [&](const PictureSpec& p) { return p.name == s.word; });
    if (!sprite || spec == specs_.end()) Fail(run, "no sprite is named " + s.word);
    if (!library_.Uses(run.part.file, sprite->file))
      Fail(run, "add a line: use " + sprite->file.substr(0, sprite->file.size() - 4));
    if (depth_ > kDeepest) Fail(run, "sprites copy each other without end");
    const int frame = frame_, frames = frames_;
    Canvas copy = Painter(*this, depth_ + 1).Frame(*spec, Whole(Number(run, s, 0)));
    frame_ = frame, frames_ = frames;
    StampCanvas(run, s, copy, Number(run, s, 1), Number(run, s, 2));
  }

  // icon PICTURE frame [x y width height]: a small picture of that frame or of a part of it.
  void Icon(Run& run, const Statement& s) {
    if (std::none_of(specs_.begin(), specs_.end(), [&](const PictureSpec& p) { return p.name == s.word; }))
      Fail(run, "no picture is named " + s.word);
    IconRule rule;
    rule.size = std::clamp(Whole(Value(run, s, "size", 16)), 1, 64);
    rule.cut = Find(s, "cut") != nullptr;
    if (s.arguments.size() == 5)
      rule.part = {Whole(Number(run, s, 1)), Whole(Number(run, s, 2)),
                   Whole(Number(run, s, 1) + Number(run, s, 3)) - 1,
                   Whole(Number(run, s, 2) + Number(run, s, 4)) - 1};
    else if (s.arguments.size() != 1)
      Fail(run, "icon takes a frame, or a frame and a part of four numbers");
    const auto& frames = framesOf_(s.word);
    const double left = Value(run, s, "left", 0), top = Value(run, s, "top", 0);
    if (frames.empty()) {
      NotDrawnYet(run, Whole(left), Whole(top), rule.size);
      return;
    }
    const size_t frame = static_cast<size_t>(std::max(0, Whole(Number(run, s, 0))));
    if (frame >= frames.size()) Fail(run, s.word + " has no frame " + std::to_string(frame));
    if (rule.part.right >= frames[frame].width || rule.part.bottom >= frames[frame].height ||
        rule.part.left < 0 || rule.part.top < 0)
      Fail(run, "the part reaches beyond " + s.word);
    StampCanvas(run, s, MakeIcon(palette_, frames[frame], rule), left, top);
  }

  // A dotted square stands for a picture that has no source.
  void NotDrawnYet(Run& run, int left, int top, int size) {
    const auto ink = static_cast<Colour>(palette_.Ramp("ink") * kStepsPerRamp);
    for (int i = 1; i < size - 1; i += 2)
      for (const auto& [x, y] : {std::pair{i, 1}, {i, size - 2}, {1, i}, {size - 2, i}})
        run.canvas->Set(left + x, top + y, {ink, 255});
  }

  Painter(const Painter& other, int depth)
      : library_(other.library_), palette_(other.palette_), specs_(other.specs_), framesOf_(other.framesOf_),
        depth_(depth) {}

  void StampCanvas(Run& run, const Statement& s, Canvas layer, double x, double y) {
    Canvas::Edge edge = Canvas::Edge::None;
    bool under = false;
    for (const Option& o : s.options) {
      const double value = o.name == ">" ? 0 : Evaluate(o.value, run.scope);
      if (o.name == ">")
        layer.Recolour(ToRamp(run, Evaluate(o.from, run.scope)), ToRamp(run, Evaluate(o.to, run.scope)));
      else if (o.name == "fx" && value != 0)
        layer.FlipX();
      else if (o.name == "fy" && value != 0)
        layer.FlipY();
      else if (o.name == "turn")
        for (int i = 0; i < value; ++i) layer.Turn();
      else if (o.name == "dark")
        layer.Shade(-Whole(value));
      else if (o.name == "light")
        layer.Shade(Whole(value));
      else if (o.name == "line")
        edge = Canvas::Edge::Line;
      else if (o.name == "full")
        edge = Canvas::Edge::Full;
      else if (o.name == "under")
        under = true;
      else if (o.name == "narrow")
        layer.Narrow(Whole(value));
      else if (o.name == "alpha")
        layer.Fade(Alpha(run, s));
    }
    if (s.op == "layer") {
      run.canvas->Stamp(layer, Whole(x), Whole(y), edge, under);
      return;
    }
    const Canvas::Within within(*run.canvas, x + layer.Width() * .5, y + layer.Height() * .5);
    run.canvas->Stamp(layer, Whole(x), Whole(y), edge, under);
  }

  Paint PaintOf(Run& run, const Statement& s, double colour) {
    Paint paint;
    paint.ramp = ToRamp(run, colour);
    if (const Option* o = Find(s, "mat")) paint.material = o->word;
    paint.flat = Whole(Value(run, s, "flat", -1));
    if (Value(run, s, "solid", 0) != 0) paint.flat = ToColour(run, colour) % kStepsPerRamp;
    paint.bias = Value(run, s, "bias", 0);
    paint.noise = Value(run, s, "noise", 0);
    paint.seed = Whole(Value(run, s, "seed", 1));
    paint.alpha = Alpha(run, s);
    paint.under = Value(run, s, "under", 0) != 0;
    paint.inside = Value(run, s, "inside", 0) != 0;
    if (Value(run, s, "parted", 0) != 0) paint.parting = Parting::Line;
    if (Value(run, s, "darkened", 0) != 0) paint.parting = Parting::Dark;
    if (Value(run, s, "shadow", 0) != 0) paint.parting = Parting::Shadow;
    return paint;
  }

  void Shape(Run& run, const Statement& s) {
    const auto number = [&](size_t i, double fallback = 0) { return Number(run, s, i, fallback); };
    Solid solid;
    double colour = 0;
    const size_t given = s.arguments.size();
    if (s.op == "ell") {
      solid = Ellipse(number(0), number(1), number(2), number(3), Value(run, s, "rot", 0));
      colour = number(4);
    } else if (s.op == "cap") { // one radius or two
      const bool two = given == 7 || (given == 6 && run.solids);
      solid = Capsule(number(0), number(1), number(2), number(3), number(4), two ? number(5) : number(4));
      colour = number(given - 1);
    } else if (s.op == "limb") {
      solid = Limb(run, s);
      colour = number(given - 1);
    } else {
      std::vector<Corner> corners;
      for (const auto& [x, y] : s.points)
        corners.emplace_back(Evaluate(x, run.scope), Evaluate(y, run.scope));
      solid = Polygon(corners, Value(run, s, "bevel", 2.5));
      colour = number(0);
    }
    if (run.solids)
      run.solids->push_back(std::move(solid));
    else
      run.canvas->Draw(solid, PaintOf(run, s, colour));
  }

  // Two bones of length l1 and l2 from (x0,y0) to (x1,y1), bent to the side bend says.
  Solid Limb(Run& run, const Statement& s) {
    const auto number = [&](size_t i) { return Number(run, s, i); };
    const double x0 = number(0), y0 = number(1), l1 = number(4), l2 = number(5), r0 = number(6);
    const double r1 = s.arguments.size() == 9 || (run.solids && s.arguments.size() == 8) ? number(7) : r0;
    const double dx = number(2) - x0, dy = number(3) - y0;
    const double d = std::clamp(std::sqrt(dx * dx + dy * dy), std::abs(l1 - l2) + .01, l1 + l2 - .01);
    const double a = std::atan2(dx, dy);
    const double k = std::acos(std::clamp((l1 * l1 + d * d - l2 * l2) / (2 * l1 * d), -1.0, 1.0)) *
                     Value(run, s, "bend", 1);
    const double kx = x0 + l1 * std::sin(a + k), ky = y0 + l1 * std::cos(a + k);
    const double ex = x0 + d * std::sin(a), ey = y0 + d * std::cos(a);
    return Union({Capsule(x0, y0, kx, ky, r0, (r0 + r1) / 2), Capsule(kx, ky, ex, ey, (r0 + r1) / 2, r1)});
  }

  void DrawFlat(Run& run, const Solid& solid, Dot dot) {
    const Canvas::Within within(*run.canvas, (solid.area.left + solid.area.right + 1) * .5,
                                (solid.area.top + solid.area.bottom + 1) * .5);
    for (int y = solid.area.top; y <= solid.area.bottom; ++y)
      for (int x = solid.area.left; x <= solid.area.right; ++x)
        if (solid.At(x, y).inside) run.canvas->Set(x, y, dot);
  }

  void Rectangle(Run& run, const Statement& s) {
    const int x = Whole(Number(run, s, 0)), y = Whole(Number(run, s, 1));
    const int w = Whole(Number(run, s, 2)), h = Whole(Number(run, s, 3));
    const Colour colour = ToColour(run, Number(run, s, 4));
    const uint8_t alpha = Alpha(run, s);
    const Canvas::Within within(*run.canvas, x + w * .5, y + h * .5);
    for (int j = 0; j < h; ++j)
      for (int i = 0; i < w; ++i) {
        int by = 0;
        if (s.op == "bevel") {
          if (i == w - 1 || j == h - 1)
            by = -1;
          else if (i == 0 || j == 0)
            by = 1;
        }
        run.canvas->Set(x + i, y + j, {by ? palette_.Step(colour, by) : colour, alpha});
      }
  }

  // Colours from top to bottom, mixed by ordered dither only around the middle between two of them.
  void Gradient(Run& run, const Statement& s) {
    constexpr double kBayer[16] = {0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5};
    const int x = Whole(Number(run, s, 0)), y = Whole(Number(run, s, 1));
    const int w = Whole(Number(run, s, 2)), h = Whole(Number(run, s, 3));
    std::vector<Colour> colours;
    for (size_t i = 4; i < s.arguments.size(); ++i) colours.push_back(ToColour(run, Number(run, s, i)));
    for (int j = 0; j < h; ++j)
      for (int i = 0; i < w; ++i) {
        const double t = (j + .5) / h * static_cast<double>(colours.size() - 1);
        const auto low = static_cast<size_t>(t);
        const double part = std::clamp((t - static_cast<double>(low) - .5) * 1.6 + .5, 0.0, 1.0);
        const bool next = part > (kBayer[((y + j) & 3) * 4 + ((x + i) & 3)] + .5) / 16;
        run.canvas->Set(x + i, y + j, {colours[std::min(low + next, colours.size() - 1)], Alpha(run, s)});
      }
  }

  // Letters of the text font: "words" x y colour; scale doubles the pixels, alpha fades.
  void Text(Run& run, const Statement& s) {
    constexpr const char* kFont = "spr_spritefont";
    const auto spec =
        std::find_if(specs_.begin(), specs_.end(), [&](const PictureSpec& p) { return p.name == kFont; });
    if (!library_.Sprite(kFont) || spec == specs_.end()) Fail(run, "there is no font to write with");
    if (!library_.Uses(run.part.file, library_.Sprite(kFont)->file)) Fail(run, "add a line: use letters");
    int x = Whole(Number(run, s, 0));
    const int y = Whole(Number(run, s, 1)), scale = Whole(Value(run, s, "scale", 1));
    const Colour colour = ToColour(run, Number(run, s, 2));
    const bool line = Find(s, "full") != nullptr;
    for (const char c : s.word) {
      if (c == '"') continue;
      if (c == ' ') {
        x += 5 * scale;
        continue;
      }
      const Canvas glyph = Painter(*this, depth_ + 1).Frame(*spec, c - '!');
      int left = glyph.Width(), right = -1;
      for (int j = 0; j < glyph.Height(); ++j)
        for (int i = 0; i < glyph.Width(); ++i)
          if (glyph.At(i, j).colour != kClear) left = std::min(left, i), right = std::max(right, i);
      for (int j = 0; j < glyph.Height(); ++j)
        for (int i = left; i <= right; ++i) {
          const Dot dot = glyph.At(i, j);
          const bool core = palette_.Rgba(dot.colour) == 0xffffffffu;
          if (dot.colour == kClear || (!core && !line)) continue;
          for (int v = 0; v < scale; ++v)
            for (int u = 0; u < scale; ++u)
              run.canvas->Set(x + (i - left) * scale + u, y + j * scale + v,
                              {core ? colour : dot.colour, Alpha(run, s)});
        }
      x += (right - left) * scale;
    }
  }
};

} // namespace

std::vector<Picture> PaintSprite(const Library& library, const Palette& palette, const PictureSpec& spec,
                                 const std::vector<PictureSpec>& specs, const FramesOf& framesOf,
                                 int onlySet) {
  std::vector<Picture> frames;
  for (int frame = 0; frame < spec.frames; ++frame) {
    const Canvas canvas = Painter(library, palette, specs, framesOf).Frame(spec, frame, onlySet);
    Picture picture{spec.width, spec.height, {}};
    for (int y = 0; y < spec.height; ++y)
      for (int x = 0; x < spec.width; ++x) {
        const Dot dot = canvas.At(x, y);
        picture.rgba.push_back(
            dot.colour == kClear ? 0 : (palette.Rgba(dot.colour) & 0xffffffu) | uint32_t(dot.alpha) << 24);
      }
    frames.push_back(std::move(picture));
  }
  return frames;
}

} // namespace vesk::studio
