#include "sim/Look.h"

#include "Files/Code/BuiltinVariables.h"
#include "Files/Code/Slots.h"
#include "Files/Object/Object.h"
#include "Files/Room/Room.h"
#include "Files/Sprite/Sprite.h"
#include "game/GameTables.h"
#include "game/Variables.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace vesk {

bool ParseVariable(std::string_view text, VariablePath& path) {
  const size_t bracket = text.find('[');
  path.name = std::string(text.substr(0, bracket));
  path.index = kNoIndex;
  if (path.name.empty()) return false;
  if (bracket == std::string_view::npos) return true;
  if (text.back() != ']') return false;
  const std::string_view digits = text.substr(bracket + 1, text.size() - bracket - 2);
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), path.index);
  return error == std::errc() && end == digits.data() + digits.size();
}

namespace {

int32_t VariableId(const std::string& name) {
  const int32_t builtin = BuiltinVariables_Find(name);
  if (builtin >= 0) return builtin;
  const int32_t slot = Variable_SlotOf(name);
  return slot >= 0 ? kVariableIdBase + slot : -1;
}

} // namespace

bool VariableExists(std::string_view name) { return VariableId(std::string(name)) >= 0; }

RValue ReadVariable(CInstance* instance, const VariablePath& path) {
  RValue value;
  const int32_t id = VariableId(path.name);
  if (id < 0) return value;
  ZqObjectBase* holder = instance                ? static_cast<ZqObjectBase*>(instance)
                         : id >= kVariableIdBase ? GlobalObject()
                                                 : nullptr;
  if (id >= kVariableIdBase) {
    const RValue* slot = holder ? holder->FindSlot(id - kVariableIdBase) : nullptr;
    if (!slot) {
      value.kind = kUnset;
    } else if (path.index == kNoIndex) {
      value = *slot;
    } else if (const RValue* element = ArrayElementForRead(*slot, path.index)) {
      value = *element;
    }
    return value;
  }
  Variable_GetValue(holder, id, path.index, value);
  return value;
}

bool WriteVariable(CInstance* instance, const VariablePath& path, const RValue& value) {
  const int32_t id = VariableId(path.name);
  if (id < 0) return false;
  return Variable_SetValue(instance ? static_cast<ZqObjectBase*>(instance) : GlobalObject(), id, path.index,
                           value);
}

std::string JsonNumber(double value) {
  if (std::isnan(value)) return "null";
  char text[64];
  std::snprintf(text, sizeof text, "%.6f", value);
  std::string result = text;
  result.erase(result.find_last_not_of('0') + 1);
  if (result.back() == '.') result.pop_back();
  return result == "-0" ? "0" : result;
}

std::string JsonText(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    if (static_cast<unsigned char>(c) < 0x20) {
      char code[8];
      std::snprintf(code, sizeof code, "\\u%04x", c);
      result += code;
    } else {
      result += c;
    }
  }
  return result + "\"";
}

std::string JsonValue(const std::string& name, const RValue& value) {
  if (value.IsUnset() || value.IsUndefined()) return "null";
  if (value.IsString()) return JsonText(value.Text());
  if (value.IsArray()) {
    std::string list = "[";
    for (int32_t at = 0; at < ArrayLength1d(value); ++at)
      list += (at ? "," : "") + JsonValue("", *ArrayElementForRead(value, at));
    return list + "]";
  }
  const double number = ValueAsReal(value);
  if (name == "object_index") return JsonText(Object_Name(static_cast<int32_t>(number)));
  if (name == "sprite_index" || name == "mask_index")
    if (const CSprite* sprite = Sprite_Find(static_cast<int32_t>(number))) return JsonText(sprite->name);
  return JsonNumber(number);
}

std::vector<CInstance*> InstancesOf(int32_t object) {
  std::vector<CInstance*> found;
  if (const CObjectFb* it = Object_Find(object))
    for (InstanceList::Node* node = it->instancesRecursive.head; node; node = node->next)
      if (node->instance->Live()) found.push_back(node->instance);
  std::sort(found.begin(), found.end(), [](const CInstance* a, const CInstance* b) { return a->id < b->id; });
  return found;
}

int32_t CountTiles(double depth) {
  const CRoom* room = CurrentRoom();
  if (!room) return 0;
  return static_cast<int32_t>(std::count_if(room->tiles.begin(), room->tiles.end(), [&](const Tile& tile) {
    return std::fabs(tile.depth - depth) < 1e-5;
  }));
}

} // namespace vesk
