#include "Files/Run/WorldState.h"

#include "Files/IO/IO.h"
#include "Files/Run/WorldFields.h"
#include "Files/Support/ValueText.h"

#include <cstring>
#include <string_view>
#include <type_traits>

namespace vesk {

namespace {

// FNV-1a over the fields' values.
class Digest {
public:
  void operator()(std::string_view, const RValue& value) { Add(value, 0); }
  void operator()(std::string_view, const std::string& text) { Add(text); }
  template <class T>
  requires std::is_arithmetic_v<T>
  void operator()(std::string_view, const T& value) { Add(value); }

  void Add(std::string_view text) {
    Add(text.size());
    for (const char c : text) Byte(static_cast<unsigned char>(c));
  }
  template <class T>
  requires std::is_arithmetic_v<T>
  void Add(T value) {
    if constexpr (std::is_floating_point_v<T>)
      if (value == 0) value = 0; // -0 and 0 are one number to every rule
    unsigned char bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof(T));
    for (const unsigned char byte : bytes) Byte(byte);
  }
  uint64_t Value() const { return m_hash; }

private:
  static constexpr int kDeepest = 100; // arrays in arrays
  void Add(const RValue& value, int depth) {
    Add(value.Kind());
    if (value.IsString()) {
      Add(value.Text());
    } else if (value.IsArray() && depth < kDeepest) {
      Add(ArrayHeight2d(value));
      for (int32_t row = 0; row < ArrayHeight2d(value); ++row)
        for (int32_t column = 0; column < ArrayLength2d(value, row); ++column)
          Add(*ArrayElementForRead(value, int64_t{row} * kRowStride + column), depth + 1);
    } else if (value.IsNumber()) {
      Add(ValueAsReal(value));
    }
  }
  void Byte(unsigned char byte) { m_hash = (m_hash ^ byte) * 1099511628211ull; }
  uint64_t m_hash = 14695981039346656037ull;
};

class Lister {
public:
  void operator()(std::string name, const RValue& value) { Put(std::move(name), ValueText_Write(value)); }
  void operator()(std::string name, const std::string& text) {
    Put(std::move(name), ValueText_Write(RValue(text)));
  }
  template <class T>
  requires std::is_arithmetic_v<T>
  void operator()(std::string name, const T& value) {
    if constexpr (std::is_floating_point_v<T>)
      Put(std::move(name), NumberText_Write(value));
    else
      Put(std::move(name), std::to_string(value));
  }
  WorldFieldTexts texts;

private:
  void Put(std::string name, std::string text) { texts.emplace_back(std::move(name), std::move(text)); }
};

// `all(visit)` names every field of the part.
template <class All> WorldPart Part(std::string name, All all) {
  Digest digest;
  digest.Add(name);
  all(digest);
  return {std::move(name), digest.Value(), [all] {
            Lister lister;
            all(lister);
            return std::move(lister.texts);
          }};
}
template <class T> WorldPart PartOf(std::string name, T& subject) {
  return Part(std::move(name), [&subject](auto& visit) { VisitFields(visit, subject); });
}

void AddRoom(std::vector<WorldPart>& parts, CRoom& room) {
  parts.push_back(PartOf("room", room));
  for (size_t n = 0; n < room.backgrounds.size(); ++n)
    parts.push_back(PartOf("background " + std::to_string(n), room.backgrounds[n]));
  for (size_t n = 0; n < room.views.size(); ++n)
    parts.push_back(PartOf("view " + std::to_string(n), room.views[n]));
  for (const Tile& tile : room.tiles)
    if (tile.id >= 0) // the lists only read
      parts.push_back(PartOf("tile " + std::to_string(tile.id), const_cast<Tile&>(tile)));

  std::vector<CInstance*> instances;
  for (CInstance* head : {room.active.head, room.inactive.head})
    for (CInstance* it = head; it; it = it->next) instances.push_back(it);
  std::sort(instances.begin(), instances.end(),
            [](const CInstance* a, const CInstance* b) { return a->id < b->id; });
  for (CInstance* it : instances)
    parts.push_back(Part("instance " + std::to_string(it->id) + " (" + Object_Name(it->objectIndex) + ")",
                         [it](auto& visit) {
                           VisitFields(visit, *it);
                           VisitSlots(visit, *it);
                         }));
}

} // namespace

std::vector<WorldPart> World_Parts() {
  std::vector<WorldPart> parts;
  if (CRoom* room = CurrentRoom()) AddRoom(parts, *room);
  if (const ZqObjectBase* globals = GlobalObject())
    parts.push_back(Part("global", [globals](auto& visit) { VisitSlots(visit, *globals); }));
  parts.push_back(PartOf("game", Game()));
  parts.push_back(PartOf("random", Random()));
  parts.push_back(Part("keys", [](auto& visit) {
    KeyMap keys{Input().keyMap};
    VisitFields(visit, keys);
  }));
  parts.push_back(Part("run", [](auto& visit) {
    RunNumbers numbers = NumbersOfRun();
    VisitFields(visit, numbers);
  }));
  return parts;
}

uint64_t World_Checksum() {
  Digest digest;
  for (const WorldPart& part : World_Parts()) digest.Add(part.digest);
  return digest.Value();
}

} // namespace vesk
