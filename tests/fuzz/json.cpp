// Any text decodes to a map or to nothing, as json-c reads it, and what was decoded encodes to a text that
// means the same.
#include "Files/Support/Json.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Support/Support_Data_Structures.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <json-c/json.h>

using namespace vesk;

namespace {

bool SameValue(const RValue& value, json_object* json, uint32_t kind);

// Members without a value are left out of maps.
bool SameMap(int32_t id, json_object* object) {
  const CDS_Map* map = Ds().maps.Find(id);
  int members = 0;
  json_object_object_foreach(object, key, member) {
    if (!member) continue;
    ++members;
    const CDS_Map::Entry* entry = map->Find(std::string_view(key));
    if (!entry || !SameValue(entry->value, member, entry->value.kind)) return false;
  }
  return map->Count() == members;
}

bool SameList(int32_t id, json_object* array) {
  const CDS_List* list = Ds().lists.Find(id);
  if (list->values.size() != json_object_array_length(array)) return false;
  for (size_t i = 0; i < list->values.size(); ++i)
    if (!SameValue(list->values[i], json_object_array_get_idx(array, i), list->values[i].kind)) return false;
  return true;
}

bool SameValue(const RValue& value, json_object* json, uint32_t kind) {
  switch (json_object_get_type(json)) {
  case json_type_object: return (kind & kMarkMap) && SameMap(static_cast<int32_t>(value.real), json);
  case json_type_array: return (kind & kMarkList) && SameList(static_cast<int32_t>(value.real), json);
  case json_type_string: return value.IsString() && value.Text() == json_object_get_string(json);
  case json_type_null: return value.IsUndefined();
  default: {
    const double number = json_object_get_double(json);
    return value.IsNumber() && (ValueAsReal(value) == number || number != number);
  }
  }
}

// A text in braces is read as it stands when json-c can read it.
void CompareWithJsonC(const std::string& text, int32_t map) {
  if (text.empty() || text.front() != '{' || text.back() != '}') return;
  json_tokener* tokener = json_tokener_new_ex(kJsonDepth);
  json_object* object = json_tokener_parse_ex(tokener, text.c_str(), -1);
  // A text that ends within a comment counts as read as well, and gives whatever stood before the comment.
  const bool read = json_tokener_get_error(tokener) == json_tokener_success &&
                    json_object_is_type(object, json_type_object) && text.find("//") == text.npos &&
                    text.find("/*") == text.npos;
  if (read && (map < 0 || !SameMap(map, object))) std::abort();
  json_object_put(object);
  json_tokener_free(tokener);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Error().showBox = false;
  const std::string given(reinterpret_cast<const char*>(data), size);
  const int32_t map = json_decode(RValue(given));
  CompareWithJsonC(given.substr(0, given.find('\0')), map);
  if (map >= 0) {
    const std::string text = json_encode(map);
    ds_map_destroy(map);
    const int32_t again = json_decode(text);
    if (again >= 0) {
      // Numbers lose digits once, on the first writing, and no more.
      if (json_encode(again) != text && text.find("nan") == text.npos && text.find("inf") == text.npos)
        std::abort();
      ds_map_destroy(again);
    }
  }
  if (ds_exists(0, ds_type_map) || ds_exists(0, ds_type_list)) std::abort(); // something was left behind
  return 0;
}
