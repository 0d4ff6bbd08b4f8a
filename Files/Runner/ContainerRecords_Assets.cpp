#include "Files/Runner/ContainerReader.h"

namespace vesk::container {

void ContainerReader::ReadAudioGroups() {
  if ((m_records.options.flags & kOptionNewAudio) == 0 || !Enter("AGRP")) return;
  const std::vector<uint32_t> references = m_reader.List("records");
  for (size_t i = 0; i < references.size() && m_reader.Ok(); ++i) {
    m_records.audioGroups.push_back("");
    if (references[i] == 0) continue;
    m_reader.EnterRecord("record", i, references[i]);
    m_records.audioGroups.back() = m_reader.Text();
  }
}

void ContainerReader::ReadSoundData() {
  ReadList("AUDO", m_records.soundData, [&]() -> std::span<const uint8_t> {
    const uint32_t length = m_reader.U32();
    const uint32_t data = m_reader.At();
    if (!m_reader.Ok()) return {};
    if (!m_container.Has(data, length)) {
      m_reader.Fail("the data of " + Number(length) + " bytes end outside the container");
      return {};
    }
    return {m_container.Bytes() + data, length};
  });
}

void ContainerReader::ReadSounds() {
  if ((m_records.options.flags & kOptionNewAudio) == 0) {
    if (Enter("SOND"))
      m_reader.Check(m_reader.U32() == 0,
                     "the options ask for the old form of sounds, which is not supported");
    return;
  }
  ReadSoundData();
  ReadList("SOND", m_records.sounds, [&] { return ReadSound(); });
}

SoundRecord ContainerReader::ReadSound() {
  SoundRecord sound;
  sound.name = m_reader.Text();
  const uint32_t mode = m_reader.U32();
  if (mode < 100)
    sound.mode = mode > 0 ? SoundMode::kStreamed : SoundMode::kUncompressed;
  else if (mode <= 103)
    sound.mode = static_cast<SoundMode>(mode);
  else
    m_reader.Fail("storage mode " + Number(mode) + " is unknown");
  sound.type = m_reader.Text();
  sound.file = m_reader.Text();
  m_reader.Skip(4);
  sound.gain = m_reader.F32();
  m_reader.Skip(4);
  sound.group = m_reader.I32();
  const auto groups = static_cast<int32_t>(m_records.audioGroups.size());
  if (groups == 0)
    sound.group = 0;
  else
    m_reader.Check(sound.group >= 0 && sound.group < groups,
                   [&] { return "audio group " + Number(sound.group) + " is not one of " + Number(groups); });
  sound.audioIndex = Asset("data", m_records.soundData.size());
  if (m_reader.Ok() && sound.audioIndex >= 0)
    sound.data =
        m_records.soundData[static_cast<size_t>(sound.audioIndex)].value_or(std::span<const uint8_t>());
  return sound;
}

void ContainerReader::ReadPaths() {
  ReadList("PATH", m_records.paths, [&] {
    PathRecord path;
    path.name = m_reader.Text();
    path.kind = m_reader.I32();
    path.closed = m_reader.Bool();
    path.precision = m_reader.I32();
    // A smooth path is sampled 2 to the power of the precision times a piece.
    m_reader.Check(path.precision >= 0 && path.precision <= 8,
                   [&] { return "the precision " + Number(path.precision) + " is not within 0 to 8"; });
    path.points.resize(m_reader.Count("points", 12));
    for (PathRecord::Point& point : path.points) {
      point.x = m_reader.F32();
      point.y = m_reader.F32();
      point.speed = m_reader.F32();
    }
    return path;
  });
}

void ContainerReader::ReadScripts() {
  ReadList("SCPT", m_records.scripts, [&] {
    ScriptRecord script;
    script.name = m_reader.Text();
    script.code = Code("script");
    return script;
  });
}

void ContainerReader::ReadShaders() {
  ReadList("SHDR", m_records.shaders, [&] { return ReadShader(); });
}

ShaderRecord ContainerReader::ReadShader() {
  constexpr uint32_t kExtended = 0x80000000;
  ShaderRecord shader;
  shader.name = m_reader.Text();
  const uint32_t type = m_reader.U32();
  shader.kind = type & ~kExtended;
  for (const char** source : {&shader.glesVertex, &shader.glesFragment, &shader.glVertex, &shader.glFragment,
                              &shader.hlsl9Vertex, &shader.hlsl9Fragment})
    *source = m_reader.Text();
  m_reader.Skip(8);
  shader.attributes.resize(m_reader.Count("attributes", 4));
  for (const char*& attribute : shader.attributes) attribute = m_reader.Text();
  if ((type & kExtended) != 0) m_reader.U32();
  return shader;
}

} // namespace vesk::container
