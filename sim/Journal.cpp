// The file: a head line; then for each frame "frame CHECKSUM", a line "part DIGEST NAME" for each part that
// changed with "NAME=VALUE" or "NAME gone" for its changed fields below it, and "end NAME" for parts that are
// no more.
#include "sim/Journal.h"

#include "Files/Run/WorldState.h"

#include <charconv>
#include <set>
#include <string_view>

namespace vesk {

namespace {

constexpr std::string_view kHead = "vesk-journal 1";
constexpr std::string_view kFrame = "frame ", kPart = "part ", kEnd = "end ", kGone = " gone";
constexpr size_t kDigits = 16;

std::string Digits(uint64_t number) {
  std::string text(kDigits, '0');
  for (size_t at = kDigits; at-- > 0; number >>= 4) text[at] = "0123456789abcdef"[number & 15];
  return text;
}

bool ReadDigits(std::string_view text, uint64_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  return error == std::errc() && end == text.data() + text.size() && text.size() == kDigits;
}

} // namespace

// ---- writing ----

std::string JournalWriter::Open(const std::string& file) {
  m_name = file;
  m_file.open(file, std::ios::binary);
  if (!m_file) return "\"" + file + "\" can't be written";
  m_file << kHead << "\n";
  return "";
}

void JournalWriter::Note(const WorldPart& part) {
  Part& known = m_parts[part.name];
  known.seen = true;
  if (known.digest == part.digest && !known.fields.empty()) return;
  known.digest = part.digest;
  m_file << kPart << Digits(part.digest) << " " << part.name << "\n";
  std::map<std::string, std::string> fields;
  for (auto& [name, value] : part.fields()) {
    const auto before = known.fields.find(name);
    if (before == known.fields.end() || before->second != value) m_file << name << "=" << value << "\n";
    fields.emplace(name, std::move(value));
  }
  for (const auto& [name, value] : known.fields)
    if (!fields.contains(name)) m_file << name << kGone << "\n";
  known.fields = std::move(fields);
}

void JournalWriter::Frame() {
  m_file << kFrame << Digits(World_Checksum()) << "\n";
  for (auto& [name, part] : m_parts) part.seen = false;
  for (const WorldPart& part : World_Parts()) Note(part);
  std::erase_if(m_parts, [this](const auto& entry) {
    if (!entry.second.seen) m_file << kEnd << entry.first << "\n";
    return !entry.second.seen;
  });
}

std::string JournalWriter::Close() {
  m_file.close();
  return m_file ? "" : "\"" + m_name + "\" can't be written";
}

// ---- comparing ----

std::string JournalReader::Open(const std::string& file) {
  m_file.open(file, std::ios::binary);
  if (!m_file) return "\"" + file + "\" can't be read";
  std::string head;
  if (!std::getline(m_file, head) || head != kHead) return "\"" + file + "\" is no journal";
  m_lineNumber = 1;
  if (std::getline(m_file, m_line)) ++m_lineNumber;
  return "";
}

bool JournalReader::ReadFrame() {
  if (!m_file || !m_line.starts_with(kFrame)) {
    if (m_file) m_problem = "line " + std::to_string(m_lineNumber) + " of the journal is no frame";
    return false;
  }
  ++m_frames;
  Part* part = nullptr;
  while (std::getline(m_file, m_line)) {
    ++m_lineNumber;
    const std::string_view line = m_line;
    if (line.starts_with(kFrame)) return true;
    const size_t equal = line.find('=');
    if (uint64_t digest = 0; line.starts_with(kPart) && line.size() > kPart.size() + kDigits &&
                             ReadDigits(line.substr(kPart.size(), kDigits), digest)) {
      part = &m_parts[std::string(line.substr(kPart.size() + kDigits + 1))];
      part->digest = digest;
    } else if (line.starts_with(kEnd)) {
      m_parts.erase(std::string(line.substr(kEnd.size())));
      part = nullptr;
    } else if (part && equal != std::string_view::npos) {
      part->fields[std::string(line.substr(0, equal))] = line.substr(equal + 1);
    } else if (part && line.ends_with(kGone)) {
      part->fields.erase(std::string(line.substr(0, line.size() - kGone.size())));
    } else {
      m_problem = "line " + std::to_string(m_lineNumber) + " of the journal says nothing known";
      return false;
    }
  }
  return true; // the last frame
}

std::string JournalReader::Difference(const WorldPart& part) const {
  const auto recorded = m_parts.find(part.name);
  if (recorded == m_parts.end()) return part.name + " is there, recorded was none";
  if (recorded->second.digest == part.digest) return "";
  std::set<std::string> here;
  for (const auto& [name, value] : part.fields()) {
    here.insert(name);
    const auto field = recorded->second.fields.find(name);
    if (field == recorded->second.fields.end())
      return part.name + ": " + name + " is " + value + ", recorded was none";
    if (field->second != value)
      return part.name + ": " + name + " is " + value + ", recorded was " + field->second;
  }
  for (const auto& [name, value] : recorded->second.fields)
    if (!here.contains(name)) return part.name + ": " + name + " is not written, recorded was " + value;
  return part.name + ": the checksum differs, though no field does";
}

std::string JournalReader::Check() {
  if (!ReadFrame())
    return m_problem.empty() ? "the journal has only " + std::to_string(m_frames) + " frames" : m_problem;
  std::set<std::string> here;
  for (const WorldPart& part : World_Parts()) {
    here.insert(part.name);
    if (std::string difference = Difference(part); !difference.empty()) return difference;
  }
  for (const auto& [name, part] : m_parts)
    if (!here.contains(name)) return name + " is not there, recorded it was";
  return "";
}

std::string JournalReader::Close() {
  return m_file && m_line.starts_with(kFrame)
             ? "the journal has more than the " + std::to_string(m_frames) + " frames that were played"
             : "";
}

} // namespace vesk
