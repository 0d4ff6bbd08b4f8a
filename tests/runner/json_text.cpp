// JSON text of map trees, against json-c where both must agree.
#include "Files/Base/Error.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Support/Support_Data_Structures.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <json-c/json.h>

using namespace vesk;

namespace {

class Json : public testing::Test {
protected:
  void SetUp() override {
    Ds_Reset();
    Error_Reset();
    Error().showBox = false;
  }
  void TearDown() override { Ds_Reset(); }

  static std::string Rewritten(const std::string& text) {
    const int32_t map = json_decode(text);
    std::string again = map >= 0 ? json_encode(map) : "(none)";
    if (map >= 0) ds_map_destroy(map);
    return again;
  }
};

using JsonPointer = std::unique_ptr<json_object, decltype(&json_object_put)>;

// The same structures through json-c's own object model and printer.
json_object* Mirror(const RValue& value);

int OldNumber(json_object* object, printbuf* out, int, int) {
  char text[352];
  const int length = std::snprintf(text, sizeof text, "%lf", json_object_get_double(object));
  return printbuf_memappend(out, text, length);
}

json_object* MirrorMap(int32_t id) {
  json_object* object = json_object_new_object();
  const CDS_Map* map = Ds().maps.Find(id);
  for (const CDS_Map::Entry* at = map->First(); at; at = map->Next(at)) {
    const std::string key =
        at->key.IsString() ? std::string(at->key.Text()) : std::to_string(static_cast<int64_t>(at->key.real));
    json_object_object_add(object, key.c_str(), Mirror(at->value));
  }
  return object;
}

json_object* Mirror(const RValue& value) {
  if (value.IsString()) return json_object_new_string(std::string(value.Text()).c_str());
  if (!value.IsReal()) return nullptr;
  const int32_t id = static_cast<int32_t>(value.real);
  if (value.kind & kMarkMap) return MirrorMap(id);
  if (value.kind & kMarkList) {
    json_object* array = json_object_new_array();
    for (const RValue& element : Ds().lists.Find(id)->values) json_object_array_add(array, Mirror(element));
    return array;
  }
  json_object* number = json_object_new_double(value.real);
  json_object_set_serializer(number, OldNumber, nullptr, nullptr);
  return number;
}

std::string PrintedByLibrary(int32_t map) {
  const JsonPointer object(MirrorMap(map), json_object_put);
  return json_object_to_json_string_ext(object.get(), JSON_C_TO_STRING_SPACED);
}

// What json-c reads from the text, in a form that a map tree can give too: numbers exactly, nulls in objects
// left out.
void Describe(json_object* object, std::string& out);
void Describe(const RValue& value, std::string& out);

void DescribeNumber(double number, std::string& out) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g ", number == 0 ? 0.0 : number);
  out += text;
}

void Describe(json_object* object, std::string& out) {
  switch (json_object_get_type(object)) {
  case json_type_object: {
    // In the order of a map, so that both sides read alike.
    const int32_t map = ds_map_create();
    json_object_object_foreach(object, key, member) {
      if (member) ds_map_add(map, key, static_cast<double>(reinterpret_cast<intptr_t>(member)));
    }
    out += "{ ";
    for (RValue at = ds_map_find_first(map); !at.IsUndefined(); at = ds_map_find_next(map, at)) {
      out.append(at.Text()).append("= ");
      Describe(json_object_object_get(object, std::string(at.Text()).c_str()), out);
    }
    out += "} ";
    ds_map_destroy(map);
    break;
  }
  case json_type_array:
    out += "[ ";
    for (size_t i = 0; i < json_object_array_length(object); ++i)
      Describe(json_object_array_get_idx(object, i), out);
    out += "] ";
    break;
  case json_type_string: out.append("'").append(json_object_get_string(object)).append("' "); break;
  case json_type_boolean: DescribeNumber(json_object_get_boolean(object), out); break;
  case json_type_int:
  case json_type_double: DescribeNumber(json_object_get_double(object), out); break;
  case json_type_null: out += "null "; break;
  }
}

void DescribeMap(int32_t id, std::string& out) {
  const CDS_Map* map = Ds().maps.Find(id);
  ASSERT_NE(map, nullptr);
  out += "{ ";
  for (const CDS_Map::Entry* at = map->First(); at; at = map->Next(at)) {
    out.append(at->key.Text()).append("= ");
    Describe(at->value, out);
  }
  out += "} ";
}

void Describe(const RValue& value, std::string& out) {
  if (value.IsUndefined()) {
    out += "null ";
  } else if (value.IsString()) {
    out.append("'").append(value.Text()).append("' ");
  } else if (value.kind & kMarkMap) {
    DescribeMap(static_cast<int32_t>(value.real), out);
  } else if (value.kind & kMarkList) {
    out += "[ ";
    for (const RValue& element : Ds().lists.Find(static_cast<int32_t>(value.real))->values)
      Describe(element, out);
    out += "] ";
  } else {
    DescribeNumber(value.real, out);
  }
}

class RandomText {
public:
  explicit RandomText(uint32_t seed) : m_random(seed) {}
  int Below(int limit) { return static_cast<int>(m_random() % static_cast<uint32_t>(limit)); }

  // Mostly sound JSON; `spoil` puts in what only a lenient reader accepts, and what none does.
  std::string Value(int depth, bool spoil) {
    if (spoil && Below(40) == 0)
      return Pick({"NaN", "-Infinity", "True", "nul", "01", "1.", "-", "'x'", "1e", "+1"});
    switch (Below(depth > 4 ? 4 : 7)) {
    case 0: return std::to_string(Below(2000) - 1000);
    case 1: return Number();
    case 2: return '"' + Characters(spoil) + '"';
    case 3: return Pick({"true", "false", "null"});
    case 4: return Array(depth, spoil);
    default: return Object(depth, spoil);
    }
  }
  std::string Object(int depth, bool spoil) {
    std::string text = "{";
    const int members = Below(6);
    for (int i = 0; i < members; ++i) {
      if (i > 0) text += Blank() + ",";
      text += Blank() + '"' + Characters(spoil) + std::to_string(spoil ? Below(3) : i) + '"' + Blank() + ":" +
              Blank() + Value(depth + 1, spoil);
    }
    if (spoil && Below(60) == 0) text += Pick({",", "/* note */", "// note\n", "}", "]"});
    return text + Blank() + "}";
  }

private:
  std::string Pick(std::initializer_list<const char*> texts) {
    return texts.begin()[Below(static_cast<int>(texts.size()))];
  }
  std::string Blank() { return Pick({"", "", " ", "  ", "\n", "\t", "\r\n"}); }
  std::string Array(int depth, bool spoil) {
    std::string text = "[";
    const int elements = Below(5);
    for (int i = 0; i < elements; ++i) text += (i > 0 ? "," : "") + Blank() + Value(depth + 1, spoil);
    return text + Blank() + "]";
  }
  std::string Number() {
    char text[64];
    const char* forms[] = {"%.6f", "%.17g", "%.1e", "%.15g", "%.20f"};
    const double sizes[] = {1e-7, 1, 1000, 1e12, 1e300};
    const double number = (std::uniform_real_distribution<double>(-1, 1)(m_random)) * sizes[Below(5)];
    std::snprintf(text, sizeof text, forms[Below(std::abs(number) > 1e20 ? 4 : 5)], number);
    return std::abs(number) > 1e20 && std::strlen(text) > 60 ? "7" : text;
  }
  std::string Characters(bool spoil) {
    std::string text;
    const int length = Below(8);
    for (int i = 0; i < length; ++i)
      text += Below(6) > 0 ? std::string(1, static_cast<char>('a' + Below(26)))
                           : Pick({"\\n", "\\\"", "\\\\", "\\/", "\\u00e9", "\\u20AC", "\\u0001", "é", "€",
                                   "/", "\\f", " "});
    if (spoil && Below(30) == 0) text += Pick({"\\ud83d\\ude00", "\\ud83d", "\\x", "\\u12", "\n", "\x01"});
    return text;
  }

  std::mt19937 m_random;
};

} // namespace

TEST_F(Json, ANewLevelIsWrittenInTheOrderOfItsChains) {
  const int32_t level = ds_map_create();
  const int32_t section = ds_map_create();
  ds_map_add_map(level, "Main", section);
  for (const char* layer : {"TILES", "TILES_BG", "OBJECTS", "MODIFIERS", "MARKERS"})
    ds_map_add_map(section, layer, ds_map_create());
  ds_map_add(section, "WIDTH", 250);
  ds_map_add(section, "HEIGHT", 32);
  ds_map_add(section, "BACKGROUND", "Wall");
  ds_map_add(section, "MUSIC", "Sick");
  ds_map_add(section, "WATER_COLOR", "Red");
  for (const char* number : {"WATER_LEVEL", "DARKNESS", "RAIN"}) ds_map_add(section, number, 0);

  const std::string expected =
      "{ \"Main\": { \"MUSIC\": \"Sick\", \"DARKNESS\": 0.000000, \"OBJECTS\": { }, \"WATER_COLOR\": "
      "\"Red\", "
      "\"TILES_BG\": { }, \"WIDTH\": 250.000000, \"MODIFIERS\": { }, \"HEIGHT\": 32.000000, \"BACKGROUND\": "
      "\"Wall\", \"MARKERS\": { }, \"WATER_LEVEL\": 0.000000, \"RAIN\": 0.000000, \"TILES\": { } } }";
  EXPECT_EQ(json_encode(level), expected);
  EXPECT_EQ(Rewritten(expected), expected);
}

TEST_F(Json, EscapesAndNumbersKeepTheOldForm) {
  const int32_t map = ds_map_create();
  ds_map_add(map, "t", "a/b \"q\" \\ \b\t\n\r\x0c\x01\x1f\x7f é");
  EXPECT_EQ(json_encode(map), "{ \"t\": \"a\\/b \\\"q\\\" \\\\ \\b\\t\\n\\r\\u000c\\u0001\\u001f\x7f é\" }");
  ds_map_destroy(json_decode(json_encode(map)));

  const std::pair<double, const char*> numbers[] = {{16, "16.000000"},
                                                    {-3, "-3.000000"},
                                                    {0.1234567, "0.123457"},
                                                    {1e15, "1000000000000000.000000"},
                                                    {-0.0, "-0.000000"},
                                                    {2.5, "2.500000"},
                                                    {1e20, "100000000000000000000.000000"}};
  for (const auto& [number, text] : numbers) {
    ds_map_replace(map, "t", number);
    EXPECT_EQ(json_encode(map), std::string("{ \"t\": ") + text + " }");
  }
  RValue integer;
  integer.kind = kInt64;
  integer.int64 = -9007199254740993;
  ds_map_replace(map, "t", integer);
  EXPECT_EQ(json_encode(map), "{ \"t\": -9007199254740993 }");
  RValue flag = true;
  flag.kind = kBool;
  ds_map_replace(map, "t", flag);
  EXPECT_EQ(json_encode(map), "{ \"t\": true }");
  ds_map_replace(map, "t", RValue());
  EXPECT_EQ(json_encode(map), "{ \"t\": null }");
}

TEST_F(Json, KeysAndArraysOfEveryKindAreWritten) {
  const int32_t map = ds_map_create();
  ds_map_add(map, 12.9, "number");
  EXPECT_EQ(json_encode(map), "{ \"12\": \"number\" }");
  ds_map_add(map, "12", "text"); // the same member: once, in one place
  EXPECT_EQ(json_encode(map), PrintedByLibrary(map));
  ds_map_clear(map);

  RValue rows;
  ArrayWrite(rows, 0, 1);
  ArrayWrite(rows, 1, "b");
  ArrayWrite(rows, kRowStride, 3);
  ds_map_add(map, "a", rows);
  const int32_t list = ds_list_create();
  ds_map_add_list(map, "l", list);
  EXPECT_EQ(Rewritten(json_encode(map)), json_encode(map));
  EXPECT_NE(json_encode(map).find("\"a\": [ 1.000000, \"b\", 3.000000 ]"), std::string::npos);
  EXPECT_NE(json_encode(map).find("\"l\": [ ]"), std::string::npos);
  ArrayWrite(rows, 1, rows); // an array inside itself ends somewhere
  ds_map_replace(map, "a", rows);
  EXPECT_FALSE(json_encode(map).empty());
  ArrayWrite(rows, 1, 0); // a reference count never frees a ring
}

TEST_F(Json, StaleAndCircularNestingIsNull) {
  const int32_t map = ds_map_create();
  const int32_t child = ds_map_create();
  ds_map_add_map(map, "child", child);
  ds_map_destroy(child);
  EXPECT_EQ(json_encode(map), "{ \"child\": null }");
  ds_map_replace_map(map, "child", map);
  EXPECT_EQ(json_encode(map), "{ \"child\": null }");
  EXPECT_EQ(json_encode(99), "");
  ds_map_destroy(map); // destroys itself once
  EXPECT_FALSE(ds_exists(map, ds_type_map));
}

TEST_F(Json, WhatIsNoObjectEndsUpUnderDefault) {
  const auto defaultOf = [](const RValue& text) {
    const int32_t map = json_decode(text);
    return map < 0 ? RValue("(none)") : ds_map_find_value(map, "default");
  };
  EXPECT_EQ(defaultOf("").Text(), "");
  EXPECT_EQ(defaultOf("hello").Text(), "hello");
  EXPECT_EQ(defaultOf(5).Text(), "5.00");
  EXPECT_EQ(defaultOf("{ broken }").Text(), "{ broken }");
  EXPECT_EQ(defaultOf("[ 1, 2").Text(), "[ 1, 2");
  EXPECT_EQ(json_decode("a\"b"), -1);
  EXPECT_EQ(json_decode("{ \"a\": }"), -1);
  const int32_t list = static_cast<int32_t>(defaultOf(" [ 1, null, \"x\" ]\n").real);
  ASSERT_TRUE(ds_exists(list, ds_type_list));
  EXPECT_EQ(ds_list_size(list), 3);
  EXPECT_EQ(ds_list_find_value(list, 0).real, 1);
  EXPECT_TRUE(ds_list_find_value(list, 1).IsUndefined());
  const int32_t map = json_decode(" {\"a\":null, \"b\":true, \"a\":32} ");
  EXPECT_EQ(ds_map_size(map), 2);
  EXPECT_EQ(ds_map_find_value(map, "a").real, 32);
  EXPECT_EQ(ds_map_find_value(map, "b").real, 1);
  EXPECT_EQ(Error().lastReport, "");
}

TEST_F(Json, DeepTextNeitherCrashesNorLeavesPiecesBehind) {
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "{ \"a\": ";
  EXPECT_EQ(json_decode(deep + "1" + std::string(100000, '}')), -1);
  EXPECT_FALSE(ds_exists(0, ds_type_map));

  int32_t map = ds_map_create();
  for (int i = 0; i < 400; ++i) {
    const int32_t around = ds_map_create();
    ds_map_add_map(around, "a", map);
    map = around;
  }
  const std::string text = json_encode(map);
  EXPECT_EQ(Rewritten(text), text);
}

TEST_F(Json, RandomTextsAreReadAsTheLibraryReadsThem) {
  int plain = 0, failed = 0;
  for (uint32_t seed = 0; seed < 4000; ++seed) {
    RandomText random(seed);
    const std::string text = random.Object(0, seed % 2 == 1);
    json_tokener* tokener = json_tokener_new_ex(512);
    const JsonPointer object(json_tokener_parse_ex(tokener, text.c_str(), -1), json_object_put);
    const bool sound = json_tokener_get_error(tokener) == json_tokener_success;
    json_tokener_free(tokener);
    const int32_t map = json_decode(text);
    if (!sound) {
      ++failed;
      EXPECT_TRUE(map < 0 || ds_map_exists(map, "default")) << text;
    } else {
      ++plain;
      ASSERT_GE(map, 0) << text;
      std::string ours, theirs;
      DescribeMap(map, ours);
      Describe(object.get(), theirs);
      ASSERT_EQ(ours, theirs) << text;
    }
    if (map >= 0) ds_map_destroy(map);
    ASSERT_FALSE(ds_exists(0, ds_type_map)) << "something was left behind by " << text;
    ASSERT_FALSE(ds_exists(0, ds_type_list)) << "something was left behind by " << text;
  }
  EXPECT_GT(plain, 2000);
  EXPECT_GT(failed, 100);
}

TEST_F(Json, RandomTreesAreWrittenAsTheLibraryWritesThem) {
  for (uint32_t seed = 0; seed < 1000; ++seed) {
    RandomText random(seed + 77);
    const int32_t map = json_decode(random.Object(0, false));
    ASSERT_GE(map, 0);
    std::string theirs = PrintedByLibrary(map);
    // The library of today has a short form for the form feed; the files never had it.
    for (size_t at = 0; (at = theirs.find("\\f", at)) != std::string::npos; at += 6) {
      if (at > 0 && theirs[at - 1] == '\\') continue;
      theirs.replace(at, 2, "\\u000c");
    }
    const std::string ours = json_encode(map);
    if (theirs.find("\\\\") == std::string::npos) { EXPECT_EQ(ours, theirs); }
    EXPECT_EQ(Rewritten(ours), ours);
    ds_map_destroy(map);
  }
}
