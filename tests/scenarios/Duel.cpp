#include "Files/Object/Instance.h"
#include "Files/Object/Object.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Sound/Audio_Main.h"
#include "tests/scenarios/HeroModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>

namespace vesk {

namespace {

const std::set<std::string> kHeroSounds = {"snd_jump",  "snd_bump", "snd_swim",
                                           "snd_stomp", "snd_skid", "snd_pmeter"};

constexpr const char* kCharacters[] = {"durian",    "blackberry", "cashew",     "raspberry",
                                       "pistachio", "tangerine",  "gooseberry", "rhubarb"};

struct Field {
  const char* name;
  double (*model)(const HeroModel&);
};
const Field kFields[] = {
    {"x", [](const HeroModel& m) { return double{m.x}; }},
    {"y", [](const HeroModel& m) { return double{m.y}; }},
    {"hspeed", [](const HeroModel& m) { return double{m.hspeed}; }},
    {"vspeed", [](const HeroModel& m) { return double{m.vspeed}; }},
    {"gravity", [](const HeroModel& m) { return double{m.gravity}; }},
    {"state", [](const HeroModel& m) { return m.state; }},
    {"direct", [](const HeroModel& m) { return m.direct; }},
    {"jumpnow", [](const HeroModel& m) { return m.jumpnow; }},
    {"skidnow", [](const HeroModel& m) { return m.skidnow; }},
    {"isswim", [](const HeroModel& m) { return m.isswim; }},
    {"isduck", [](const HeroModel& m) { return m.isduck; }},
    {"netsmack", [](const HeroModel& m) { return m.netsmack; }},
    {"walljump", [](const HeroModel& m) { return m.walljump; }},
    {"doublejump", [](const HeroModel& m) { return m.doublejump; }},
    {"statedelay", [](const HeroModel& m) { return m.statedelay; }},
    {"hitpoint", [](const HeroModel& m) { return m.hitpoint; }},
    {"iamkicking", [](const HeroModel& m) { return m.iamkicking; }},
    {"image_speed", [](const HeroModel& m) { return double{m.imageSpeed}; }},
};

template <class T> void AddOnce(std::vector<T>& list, const T& value) {
  if (std::find(list.begin(), list.end(), value) == list.end()) list.push_back(value);
}

std::string Described(const std::vector<ModelMark>& marks) {
  std::ostringstream text;
  for (const ModelMark& mark : marks)
    text << mark.object << " " << mark.sprite << " (" << mark.x << "," << mark.y << ") ";
  return text.str();
}

} // namespace

bool Duel::Seen::state(double value) const {
  return std::find(states.begin(), states.end(), value) != states.end();
}
bool Duel::Seen::pose(std::string_view name) const {
  return std::find(poses.begin(), poses.end(), name) != poses.end();
}
int Duel::Seen::heard(std::string_view sound) const {
  return static_cast<int>(std::count(sounds.begin(), sounds.end(), sound));
}

Duel::Duel(const Rows& rows, const LevelSettings& settings, bool settled)
    : m_stage(rows, settings), m_world(WorldOf(rows, settings)), m_model(m_world) {
  if (settled) m_stage.Settle();
  Resume();
  Audio_TakeStarted();
}

Duel::Seen Duel::Take() {
  Seen seen = std::move(m_seen);
  m_seen = {};
  return seen;
}

bool Duel::PlayFrame(const std::string& keys) {
  if (m_newestId == 0)
    for (const CInstance* it : m_stage.All("obj_smoke")) m_newestId = std::max(m_newestId, it->id);
  m_stage.Hold(keys);
  m_model.Frame(keys);
  m_stage.Step();
  ++m_frame;
  const auto where = [&] { return "frame " + std::to_string(m_frame) + ", keys " + keys + ": "; };
  if (m_model.slides || m_model.dies) return true;

  if (m_stage.Count("obj_tovin") == 0) {
    ADD_FAILURE() << where() << "the hero is gone";
    return false;
  }
  std::ostringstream wrong;
  for (const Field& field : kFields) {
    const double found = m_stage.Real("obj_tovin", field.name), wanted = field.model(m_model);
    if (!(std::fabs(found - wanted) <= 0.00001))
      wrong << " " << field.name << " is " << found << ", should be " << wanted << ";";
  }
  for (const auto& [name, wanted] :
       {std::pair("pmeter", m_model.pmeter), std::pair("slowdown", m_model.slowdown)})
    if (m_stage.Real("obj_levelmanager", name) != wanted)
      wrong << " " << name << " is " << m_stage.Real("obj_levelmanager", name) << ", should be " << wanted
            << ";";
  const std::string sprite =
      std::string("spr_player_") + kCharacters[m_model.powerup - 1] + "_" + m_model.pose;
  if (const std::string found = m_stage.Text("obj_tovin", "sprite_index"); found != sprite)
    wrong << " shows " << found << ", should be " << sprite << ";";
  const std::string mask = m_model.smallMask ? "spr_smallmask" : "spr_bigmask";
  if (const std::string found = m_stage.Text("obj_tovin", "mask_index"); found != mask)
    wrong << " has " << found << ", should be " << mask << ";";

  std::vector<std::string> sounds;
  for (const std::string& sound : Audio_TakeStarted())
    if (kHeroSounds.contains(sound)) sounds.push_back(sound);
  std::sort(sounds.begin(), sounds.end());
  std::vector<std::string> wantedSounds = m_model.sounds;
  std::sort(wantedSounds.begin(), wantedSounds.end());
  if (sounds != wantedSounds) {
    wrong << " heard";
    for (const std::string& sound : sounds) wrong << " " << sound;
    wrong << ", should be";
    for (const std::string& sound : wantedSounds) wrong << " " << sound;
    wrong << ";";
  }

  std::vector<ModelMark> marks;
  int32_t newest = m_newestId;
  for (const char* object : {"obj_smoke", "obj_spinthump"})
    for (CInstance* it : m_stage.All(object)) {
      if (it->id <= m_newestId) continue;
      newest = std::max(newest, it->id);
      marks.push_back({object, std::string(object) == "obj_smoke" ? TextOf(it, "sprite_index") : "",
                       RealOf(it, "xstart"), RealOf(it, "ystart")});
    }
  m_newestId = newest;
  if (Described(marks) != Described(m_model.marks))
    wrong << " made " << Described(marks) << ", should be " << Described(m_model.marks) << ";";

  m_seen.lowestY = std::min(m_seen.lowestY, double{m_model.y});
  m_seen.highestY = std::max(m_seen.highestY, double{m_model.y});
  m_seen.fastest = std::max(m_seen.fastest, std::fabs(double{m_model.hspeed}));
  AddOnce(m_seen.states, m_model.state);
  AddOnce(m_seen.poses, m_model.pose);
  m_seen.sounds.insert(m_seen.sounds.end(), m_model.sounds.begin(), m_model.sounds.end());
  if (wrong.str().empty()) return true;
  ADD_FAILURE() << where() << wrong.str();
  return false;
}

bool Duel::Play(std::string_view script) {
  std::istringstream words{std::string(script)};
  for (std::string word; words >> word;) {
    const size_t digits = word.find_first_of("0123456789");
    std::string keys = word.substr(0, digits);
    std::erase(keys, '.');
    for (int left = digits == std::string::npos ? 1 : std::stoi(word.substr(digits)); left > 0; --left) {
      if (!PlayFrame(keys)) return false;
      if (!m_model.slides && !m_model.dies) continue;
      ADD_FAILURE() << "frame " << m_frame << ": the hero " << (m_model.dies ? "dies" : "slides")
                    << ", the script goes on";
      return false;
    }
  }
  return true;
}

} // namespace vesk
